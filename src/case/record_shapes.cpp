#include "case/record_shapes.hpp"

#include <algorithm>

#include "case/boundary_kinds.hpp"
#include "utils/number_text.hpp"

namespace cases {

namespace {

/// Whether a value or a series follows a code of the edges file.
bool takes_argument(std::string_view code) {
  const auto number = utils::parse_integer<int>(code);
  const BoundaryKind* const kind = number ? boundary_kind(*number) : nullptr;
  return kind != nullptr && (kind->has_value() || kind->has_series());
}

RecordState behind_token_of_edge(RecordState read, std::string_view token) {
  constexpr RecordState before_code = 4, before_argument = 5;
  if (read < before_code) return read + 1;
  return read == before_code && takes_argument(token) ? before_argument : 0;
}

}  // namespace

RecordState state_behind(const RecordShape& shape, RecordState state, std::string_view token) {
  if (shape.kind == RecordShape::Kind::edges) return behind_token_of_edge(state, token);
  if (state > 0) return state - 1;
  if (shape.kind == RecordShape::Kind::fixed) return shape.tokens - 1;
  return std::max(utils::parse_integer<int>(token).value_or(0), 0);
}

}  // namespace cases
