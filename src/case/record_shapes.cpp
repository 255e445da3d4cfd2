#include "case/record_shapes.hpp"

#include <algorithm>
#include <optional>

#include "case/boundary_kinds.hpp"
#include "utils/number_text.hpp"

namespace cases {

namespace {

/// As utils::parse_integer<int>() has it: of a few digits, as most tokens are, at once.
std::optional<int> integer_of(std::string_view token) {
  constexpr std::size_t most_digits = 9;
  if (token.empty() || token.size() > most_digits) return utils::parse_integer<int>(token);
  int value = 0;
  for (const char c : token) {
    if (c < '0' || c > '9') return utils::parse_integer<int>(token);
    value = 10 * value + (c - '0');
  }
  return value;
}

}  // namespace

bool takes_argument(std::string_view code) {
  const auto number = integer_of(code);
  const BoundaryKind* const kind = number ? boundary_kind(*number) : nullptr;
  return kind != nullptr && (kind->has_value() || kind->has_series());
}

RecordState state_behind(const RecordShape& shape, RecordState state, std::string_view token) {
  if (shape.kind == RecordShape::Kind::edges) {
    return state_behind_of_edge(state, takes_argument(token));
  }
  if (state > 0) return state - 1;
  if (shape.kind == RecordShape::Kind::fixed) return shape.tokens - 1;
  return std::max(integer_of(token).value_or(0), 0);
}

}  // namespace cases
