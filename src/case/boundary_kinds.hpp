// The boundary conditions that there are: all that lists or names them draws on this table.
#pragma once

#include <array>
#include <string_view>

/// Codes of the edges file, and of the flux schemes that stand in for an interior edge.
namespace edge_code {
inline constexpr int interior = -1;
inline constexpr int transmissive = -2;
inline constexpr int discharge = -3;
inline constexpr int water_level = -4;
inline constexpr int wall = -5;
inline constexpr int hydrograph = -33;
inline constexpr int limnigraph = -44;

inline constexpr int scheme_lhllc = 1;
inline constexpr int scheme_roe = 2;

/// Whether an edge of this code stands between two cells.
inline constexpr bool is_between_cells(int code) {
  return code == interior || code == scheme_lhllc;
}
}  // namespace edge_code

namespace cases {

struct BoundaryKind {
  /// What follows the code of an edge.
  enum class Argument { none, value, series };
  /// What the argument imposes: a unit discharge (m2/s, positive leaves) or a water level (m).
  enum class Quantity { none, discharge, level };

  int code;          ///< in the edges file
  const char* name;  ///< in the companion programs
  Argument argument;
  Quantity imposes;
  bool with_sediments;  ///< whether the model with sediments has it
  const char* books;    ///< its entry in the books of a report; empty if nothing passes
  const char* meaning;

  constexpr bool has_value() const { return argument == Argument::value; }
  constexpr bool has_series() const { return argument == Argument::series; }
  constexpr bool imposes_discharge() const { return imposes == Quantity::discharge; }
  constexpr bool imposes_level() const { return imposes == Quantity::level; }
};

inline constexpr auto boundary_kinds = [] {
  using enum BoundaryKind::Argument;
  using Imposed = BoundaryKind::Quantity;
  return std::to_array<BoundaryKind>({
      {edge_code::transmissive, "transmissive", none, Imposed::none, true, "transmissive",
       "free outflow"},
      {edge_code::discharge, "discharge", value, Imposed::discharge, true, "discharge",
       "imposed unit discharge"},
      {edge_code::water_level, "level", value, Imposed::level, true, "water_level",
       "imposed water level"},
      {edge_code::wall, "wall", none, Imposed::none, true, "", "wall"},
      {edge_code::hydrograph, "hydrograph", series, Imposed::discharge, false, "hydrograph",
       "unit discharge in time"},
      {edge_code::limnigraph, "limnigraph", series, Imposed::level, false, "limnigraph",
       "water level in time"},
  });
}();

/// The kind of a code; null if there is none.
constexpr const BoundaryKind* boundary_kind(int code) {
  for (const BoundaryKind& kind : boundary_kinds) {
    if (kind.code == code) return &kind;
  }
  return nullptr;
}

/// The kind of a name in the companion programs; null if there is none.
constexpr const BoundaryKind* boundary_kind(std::string_view name) {
  for (const BoundaryKind& kind : boundary_kinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

/// The kind of a code in a model; null if the model does not have it.
constexpr const BoundaryKind* boundary_kind(int code, bool with_sediments) {
  const BoundaryKind* const kind = boundary_kind(code);
  return kind != nullptr && (kind->with_sediments || !with_sediments) ? kind : nullptr;
}

}  // namespace cases
