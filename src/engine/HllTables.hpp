// What the HLL schemes have beside the tables of a case.
#pragma once

#include <vector>

#include "engine/HllPatches.hpp"

namespace engine {

struct CellTable;

struct HllTables {
  bool second_order = true;
  std::vector<HllPatch> patches;  ///< in the order of Patches::patches
  Column reciprocal_length;       ///< see cases::HllCellOfCase, 1/m
  Column h, qx, qy;               ///< the state after the step that is being computed: m, m2/s
  Column hs, bed;                 ///< the same with sediments, m; else empty

  /// Of the geometry of a cell, see kernels::HllCellColumns.
  int numbers() const { return numbers_of_cells(second_order); }
  kernels::HllAfterColumns after();
  /// Cells that a step leaves alone have the state after it already.
  void keep(const CellTable& cells, const Range& range);
  /// The state after a step becomes that of the cells.
  void take_state_after(CellTable& cells);
  std::size_t bytes() const;
};

/// Fills Tables::hll, which the other tables must precede. Throws as cases::sides_for_hll and
/// make_hll_patches do.
void make_hll_tables(const cases::Case& contents, const std::vector<int>& order, ThreadTeam& team,
                     Tables& tables);

}  // namespace engine
