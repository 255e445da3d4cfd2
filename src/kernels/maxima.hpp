// The bodies that note the present state of a cell in what is kept of its largest flow. Most states
// change little: what one may change is asked first, so that a loop writes that alone.
#pragma once

#include "kernels/columns.hpp"
#include "physics/flow_maxima.hpp"

namespace kernels {

/// What is kept of the cells, see physics::FlowMaxima.
struct MaximaColumns {
  double *depth, *time_of_depth;
  double* level;  ///< null where the bed does not move: it is that of the largest depth then
  double *speed_squared, *discharge_squared;
  double *arrival, *under_water_since, *time_under_water;
};

struct MaximaValues {
  double t;              ///< of the state, s
  double zero_depth;     ///< m
  double arrival_depth;  ///< m
};

/// What a state may change, besides the largest depth: of that a step tells whether it has grown.
struct MaximaNews {
  bool speed, discharge;
  bool is_under;  ///< water of more than the arrival depth
};

/// Which cells of a run of them were under water in the last state that was noted.
enum class UnderWater : unsigned char { some_or_unknown, none, all };

/// What is known of a run of cells before their state is noted.
struct MaximaHint {
  UnderWater under_water = UnderWater::some_or_unknown;
  bool may_be_deeper = true;  ///< than in any state that was noted
};

QM_HD inline double discharge_squared_of(const CellColumns& cells, int i, double zero_depth) {
  return physics::discharge_squared(cells.h[i], cells.qx[i], cells.qy[i], zero_depth);
}

QM_HD inline MaximaNews news_of_state(const CellColumns& cells, const MaximaColumns& maxima, int i,
                                      const MaximaValues& values) {
  const double h = cells.h[i];
  const double q2 = discharge_squared_of(cells, i, values.zero_depth);
  return {physics::is_faster(maxima.speed_squared[i], h, q2), q2 > maxima.discharge_squared[i],
          h > values.arrival_depth};
}

QM_HD inline void note_depth(const CellColumns& cells, const MaximaColumns& maxima, int i,
                             double t) {
  const double h = cells.h[i], before = maxima.depth[i], time = maxima.time_of_depth[i];
  const bool deeper = h > before;
  maxima.depth[i] = deeper ? h : before;
  maxima.time_of_depth[i] = deeper ? t : time;
}

QM_HD inline void note_level(const CellColumns& cells, const MaximaColumns& maxima, int i,
                             double zero_depth) {
  const double h = cells.h[i];
  maxima.level[i] =
      physics::higher_level(maxima.level[i], cells.bed[i] + h, physics::is_wet(h, zero_depth));
}

QM_HD inline void note_discharge(const CellColumns& cells, const MaximaColumns& maxima, int i,
                                 double zero_depth) {
  maxima.discharge_squared[i] =
      physics::larger(maxima.discharge_squared[i], discharge_squared_of(cells, i, zero_depth));
}

QM_HD inline void note_speed(const CellColumns& cells, const MaximaColumns& maxima, int i,
                             double zero_depth) {
  maxima.speed_squared[i] = physics::larger_speed_squared(
      maxima.speed_squared[i], cells.h[i], discharge_squared_of(cells, i, zero_depth));
}

QM_HD inline void note_time_under_water(const CellColumns& cells, const MaximaColumns& maxima,
                                        int i, const MaximaValues& values) {
  const physics::TimeUnderWater after = physics::time_under_water(
      {maxima.arrival[i], maxima.under_water_since[i], maxima.time_under_water[i]},
      cells.h[i] > values.arrival_depth, values.t);
  maxima.arrival[i] = after.arrival;
  maxima.under_water_since[i] = after.since;
  maxima.time_under_water[i] = after.sum;
}

/// Notes all of a state, whatever it may change.
QM_HD inline void note_state(const CellColumns& cells, const MaximaColumns& maxima, int i,
                             const MaximaValues& values) {
  note_depth(cells, maxima, i, values.t);
  if (maxima.level != nullptr) note_level(cells, maxima, i, values.zero_depth);
  note_discharge(cells, maxima, i, values.zero_depth);
  note_speed(cells, maxima, i, values.zero_depth);
  note_time_under_water(cells, maxima, i, values);
}

}  // namespace kernels
