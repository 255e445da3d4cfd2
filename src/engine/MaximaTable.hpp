// What a run keeps of the largest flow of its cells, where it is asked to.
#pragma once

#include <vector>

#include "engine/Range.hpp"
#include "engine/aligned_vector.hpp"
#include "engine/runs.hpp"
#include "kernels/maxima.hpp"

namespace engine {

/// By the places of the cells; the entries of ghosts mean nothing.
struct MaximaTable {
  using Column = AlignedVector<double>;

  /// Nothing has been noted yet. `bed_moves`: levels are kept, too.
  MaximaTable(std::size_t cells, bool bed_moves, double arrival_depth_of_run)
      : arrival_depth(arrival_depth_of_run) {
    const physics::FlowMaxima nothing;
    depth.assign(cells, nothing.depth);
    time_of_depth.assign(cells, nothing.time_of_depth);
    if (bed_moves) level.assign(cells, nothing.level);
    speed_squared.assign(cells, nothing.speed_squared);
    discharge_squared.assign(cells, nothing.discharge_squared);
    arrival.assign(cells, nothing.arrival);
    under_water_since.assign(cells, nothing.under_water_since);
    time_under_water.assign(cells, nothing.time_under_water);
    hints.resize(cells / cells_of_shortest + 1);
  }

  /// Columns or states have been changed otherwise than by notes and steps.
  void forget_hints() { hints.assign(hints.size(), {}); }

  kernels::MaximaColumns columns() {
    return {.depth = depth.data(),
            .time_of_depth = time_of_depth.data(),
            .level = level.empty() ? nullptr : level.data(),
            .speed_squared = speed_squared.data(),
            .discharge_squared = discharge_squared.data(),
            .arrival = arrival.data(),
            .under_water_since = under_water_since.data(),
            .time_under_water = time_under_water.data()};
  }

  /// What is kept of the cell at a place, over a bed of that level (m) where that does not move.
  physics::FlowMaxima at_place(std::size_t i, double bed, double zero_depth) const {
    const double level_of_depth = physics::is_wet(depth[i], zero_depth) ? bed + depth[i] : NAN;
    return {.depth = depth[i],
            .time_of_depth = time_of_depth[i],
            .level = level.empty() ? level_of_depth : level[i],
            .speed_squared = speed_squared[i],
            .discharge_squared = discharge_squared[i],
            .arrival = arrival[i],
            .under_water_since = under_water_since[i],
            .time_under_water = time_under_water[i]};
  }

  /// Memory, bytes.
  std::size_t bytes() const {
    return bytes_of(depth, time_of_depth, level, speed_squared, discharge_squared, arrival,
                    under_water_since, time_under_water, hints);
  }

  double arrival_depth;  ///< m
  double t = 0.0;        ///< of the states that were noted last, s
  Column depth, time_of_depth, level, speed_squared, discharge_squared;
  Column arrival, under_water_since, time_under_water;
  /// Of runs of cells, by their first place / cells_of_shortest.
  std::vector<kernels::MaximaHint> hints;
};

}  // namespace engine
