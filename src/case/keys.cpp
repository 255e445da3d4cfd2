#include "case/keys.hpp"

#include <cmath>

#include "utils/number_text.hpp"

namespace cases {

std::string default_of(const Key& key) {
  if (key.use != Key::Use::optional) return "";
  const std::string text = key.other;
  return key.kind == KeyKind::number && !text.empty() ? text + " " + key.unit : text;
}

double default_number(const Key& key) {
  return utils::parse_finite_number(key.other).value_or(0.0);
}

std::optional<std::string> fault_of_arrival_depth(double depth) {
  if (std::isfinite(depth) && depth >= 0.0) return {};
  return '"' + std::string(key("output/maxima of flow/arrival depth").path) + "\" is " +
         utils::number_text(depth) + " m, expected a finite number that is not negative";
}

}  // namespace cases
