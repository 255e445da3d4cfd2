// The boundary conditions that there are: all that lists or names them draws on this table.
#pragma once

#include <array>

#include "globals/edge_codes.hpp"

namespace cases {

struct BoundaryKind {
  enum class Argument { none, value, series };

  int code;          ///< in the edges file
  const char* name;  ///< in the companion programs
  Argument argument;
  bool with_sediments;  ///< whether the model with sediments has it
  const char* books;    ///< its entry in the books of a report; empty if nothing passes
};

inline constexpr std::array<BoundaryKind, 6> boundary_kinds = {{
    {edge_code::wall, "wall", BoundaryKind::Argument::none, true, ""},
    {edge_code::transmissive, "transmissive", BoundaryKind::Argument::none, true, "transmissive"},
    {edge_code::discharge, "discharge", BoundaryKind::Argument::value, true, "discharge"},
    {edge_code::water_level, "level", BoundaryKind::Argument::value, true, "water_level"},
    {edge_code::hydrograph, "hydrograph", BoundaryKind::Argument::series, false, "hydrograph"},
    {edge_code::limnigraph, "limnigraph", BoundaryKind::Argument::series, false, "limnigraph"},
}};

/// The kind of a code; null if there is none.
constexpr const BoundaryKind* boundary_kind(int code) {
  for (const BoundaryKind& kind : boundary_kinds) {
    if (kind.code == code) return &kind;
  }
  return nullptr;
}

}  // namespace cases
