#include "case/keys.hpp"

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

}  // namespace cases
