// The boundary conditions that there are: all that lists or names them draws on this table.
#pragma once

#include <array>
#include <string_view>

#include "globals/edge_codes.hpp"

namespace cases {

struct BoundaryKind {
  enum class Argument { none, value, series };

  int code;                   ///< in the edges file
  const char* name;           ///< in the companion programs
  std::string_view in_books;  ///< name in the books of a run; empty: nothing passes it
  Argument argument;
  bool with_sediments;  ///< whether the model with sediments has it
};

inline constexpr std::array<BoundaryKind, 6> boundary_kinds = {{
    {edge_code::wall, "wall", "", BoundaryKind::Argument::none, true},
    {edge_code::transmissive, "transmissive", "transmissive", BoundaryKind::Argument::none, true},
    {edge_code::discharge, "discharge", "discharge", BoundaryKind::Argument::value, true},
    {edge_code::water_level, "level", "water_level", BoundaryKind::Argument::value, true},
    {edge_code::hydrograph, "hydrograph", "hydrograph", BoundaryKind::Argument::series, false},
    {edge_code::limnigraph, "limnigraph", "limnigraph", BoundaryKind::Argument::series, false},
}};

/// The kind of a code; null if there is none.
constexpr const BoundaryKind* boundary_kind(int code) {
  for (const BoundaryKind& kind : boundary_kinds) {
    if (kind.code == code) return &kind;
  }
  return nullptr;
}

}  // namespace cases
