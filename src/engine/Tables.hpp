// The tables of a case, or of a part of it: columns in an order of their own, cut into patches.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "case/Part.hpp"
#include "engine/CellState.hpp"
#include "engine/HllTables.hpp"
#include "engine/MaximaTable.hpp"
#include "engine/Patches.hpp"
#include "engine/Soil.hpp"
#include "kernels/boundary.hpp"

namespace engine {

/// The columns of the cells; those that are computed, then their ghosts. Those that a run does not
/// need are empty.
struct CellTable {
  Column h, qx, qy;             ///< state: m, m2/s
  Column eta;                   ///< free-surface level before the first step, m; then empty
  Column max_h;                 ///< largest depth so far, m
  Column bed;                   ///< level of the bed under the water, m
  Column max_node;              ///< highest vertex, m
  Column reciprocal_area;       ///< 1/m2
  Column char_length;           ///< m
  Column manning;               ///< s/m^(1/3)
  Column infiltrated;           ///< m
  Column hs, qsx, qsy, dqs_dh;  ///< sediment: m, m2/s, m/s
  Column rock;                  ///< level of the bed under the sediment, m

  /// Level of the bed under the sediment of a cell, by its place, m.
  double rock_of(int place) const { return rock.empty() ? bed[at(place)] : rock[at(place)]; }
  CellState state_at(std::size_t place) const;

  AlignedVector<int> rain;  ///< number of the cell's hyetogram, from 1; 0: none
  AlignedVector<int> soil;  ///< number of the cell's soil, from 0; -1: none
};

/// Flux slots; `bed` is empty without sediments.
struct Slots {
  Column mass, momentum_x, momentum_y, bed;

  void assign(std::size_t count, bool has_bed);
  kernels::SlotColumns columns();
};

struct Tables {
  bool has_bed = false;          ///< the model with sediments
  double zero_depth = 0.0;       ///< m
  double dry_step = 0.0;         ///< what a dry cell contributes to the stable step, s
  double h0 = 0.0;               ///< largest initial depth, m
  double char_length_min = 0.0;  ///< m
  double porosity = 0.0;         ///< of the bed
  physics::Grains grains{};      ///< of the bed

  CellTable cells;
  Column shortest;          ///< characteristic length of every run of cells_of_shortest cells, m
  std::vector<int> place;   ///< of the cells of the case, or of the part, in the tables
  int owned = 0;            ///< places below are computed; those from there on are ghosts
  std::vector<int> border;  ///< places of the cells that are ghosts of others
  /// Numbers in the whole case of the cells that a part owns, ascending; empty: the case is whole.
  std::vector<cases::Number> cell_number;
  Patches patches;
  std::vector<kernels::BoundaryEdge> boundaries;  ///< in the order of Patches::boundary_edge
  std::vector<int> boundary_place;  ///< of the boundaries of the case among them; -1: not here
  /// What passes the edges around patches: left sides of the cut edges, their right sides,
  /// boundaries.
  Slots outer;
  std::vector<Soil> soils;
  std::vector<std::vector<int>> soils_of_patch;  ///< empty without soils

  std::optional<HllTables> hll;       ///< of a case that asks for one of these schemes
  std::optional<MaximaTable> maxima;  ///< of a run that asks for them

  int cells_per_patch() const { return patches.patches.front().cells.size(); }
  int cut_edges() const { return static_cast<int>(patches.cut_edges.left.size()); }
  int first_boundary_slot() const { return 2 * cut_edges(); }
  /// Number in the whole case of an owned cell.
  cases::Number number_of(int cell) const {
    return cell_number.empty() ? cell : cell_number[at(cell)];
  }
  /// The owned cell that has a number in the whole case; -1: another part has it.
  int cell_of(cases::Number number) const;
  Range ghosts() const { return {owned, static_cast<int>(cells.h.size())}; }
  kernels::CellColumns columns();
  std::vector<int> places_of(std::span<const cases::Number> cells) const;
  /// Lays the sediment of cells on their rock.
  void set_bed_from_sediment(const Range& places);
  /// From now on the free surface is bed and depth.
  void drop_given_surface() { cells.eta = {}; }
  /// Stable step of the present state of a cell, by its place, before the Courant factor, s.
  double stable_step_at(std::size_t i) const;
  /// See physics::crossing_rate_with_bed, of the HLL schemes; 0 where no bed moves.
  double bed_crossing_rate_at(std::size_t i, const physics::PrimitiveWater& water) const;
  /// Memory, bytes.
  std::size_t bytes() const;
};

/// What a boundary imposes by a value, on a cell by its place: unit discharge (m2/s), or depth (m),
/// in the HLL schemes level (m); 0 where it imposes nothing.
double imposed_by(int code, double value, const Tables& tables, int place);

/// The tables of a case at its start, in patches of a number of cells (0: what suits mesh and
/// threads). Every thread touches first what it works on later. Throws std::length_error as
/// make_patches does.
Tables make_tables(const cases::Case& contents, ThreadTeam& team, int cells_per_patch = 0);
/// Those of a part, whose own cells they own; the numbers of edges that a step tells of are those
/// in the whole case.
Tables make_tables(const cases::Part& part, ThreadTeam& team, int cells_per_patch = 0);

}  // namespace engine
