// How the tokens of a file make records, for readers that begin in the middle of it.
#pragma once

#include <cstdint>
#include <string_view>

namespace cases {

/// How many tokens the records of a file have.
struct RecordShape {
  enum class Kind {
    fixed,  ///< as many in every record
    cells,  ///< a number of nodes, and so many nodes
    edges   ///< five, and a sixth behind a code that takes one
  };
  Kind kind;
  int tokens;  ///< in every record, where they are fixed
};

inline constexpr RecordShape shape_of_cells{RecordShape::Kind::cells, 0};
inline constexpr RecordShape shape_of_edges{RecordShape::Kind::edges, 0};
constexpr RecordShape records_of(int tokens) { return {RecordShape::Kind::fixed, tokens}; }

/// Where a reader stands among the tokens of a record; 0: between two records. Otherwise: of edges,
/// how many tokens of the record it has read, of others, how many are left.
using RecordState = std::int64_t;

/// Whether a token, as the code of an edge, has another one behind it.
bool takes_argument(std::string_view code);

/// Where a reader stands behind a token of an edge, which takes an argument if it is the code.
constexpr RecordState state_behind_of_edge(RecordState state, bool takes_argument) {
  constexpr RecordState before_code = 4, before_argument = 5;
  if (state < before_code) return state + 1;
  return state == before_code && takes_argument ? before_argument : 0;
}

/// Where a reader stands behind a token. A token that makes no sense at its place counts like any
/// other: whoever reads the record refuses it.
RecordState state_behind(const RecordShape& shape, RecordState state, std::string_view token);

}  // namespace cases
