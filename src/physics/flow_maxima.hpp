// The largest that a cell has seen of its flow, when it was deepest, and when and how long it was
// under water.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// Over the states of a cell that were noted, in the order of their times (s). What has not been is
/// no number (NaN). A cell is under water where it is deeper than a threshold of its own, the
/// arrival depth; a state lasts until the next one.
struct FlowMaxima {
  double depth = 0.0;              ///< m
  double time_of_depth = NAN;      ///< when it was so deep first
  double level = NAN;              ///< of the free surface of water, m
  double speed_squared = 0.0;      ///< m2/s2
  double discharge_squared = 0.0;  ///< of the unit discharge, m4/s2
  double arrival = NAN;            ///< when it was under water first
  double under_water_since = NAN;  ///< NaN: it is not
  double time_under_water = 0.0;   ///< of the spells that have ended, s
};

/// Squared unit discharge of a state; a dry one does not move.
QM_HD inline double discharge_squared(double h, double qx, double qy, double zero_depth) {
  const double squared = qx * qx + qy * qy;
  return is_wet(h, zero_depth) ? squared : 0.0;
}

/// h^2, so far from 0 that it divides.
QM_HD inline double divisor_of_speed(double h) { return larger(h * h, 1e-300); }

/// Whether a state is faster than a squared speed so far; asked without a division, since the
/// answer is no most of the time.
QM_HD inline bool is_faster(double largest, double h, double discharge_squared) {
  return discharge_squared > largest * divisor_of_speed(h);
}
QM_HD inline double larger_speed_squared(double largest, double h, double discharge_squared) {
  const double squared = discharge_squared / divisor_of_speed(h);
  return is_faster(largest, h, discharge_squared) ? larger(largest, squared) : largest;
}

/// The higher one of a level so far, which may be no number yet, and that of a wet state.
QM_HD inline double higher_level(double highest, double level, bool wet) {
  return wet && !(highest >= level) ? level : highest;
}

QM_HD inline bool has_been(double time) { return time == time; }

/// When and how long a cell is under water, after a state at time t that is so, or not.
struct TimeUnderWater {
  double arrival, since, sum;
};
QM_HD inline TimeUnderWater time_under_water(const TimeUnderWater& before, bool is_under,
                                             double t) {
  const bool was_under = has_been(before.since);
  const bool comes = is_under && !was_under;
  const bool goes = !is_under && was_under;
  return {comes && !has_been(before.arrival) ? t : before.arrival,
          comes  ? t
          : goes ? NAN
                 : before.since,
          goes ? before.sum + (t - before.since) : before.sum};
}

/// All of it, with one more state: at time t, over a bed of that level (m).
QM_HD inline FlowMaxima with_state(const FlowMaxima& m, double t, double h, double qx, double qy,
                                   double bed, double zero_depth, double arrival_depth) {
  const double q2 = discharge_squared(h, qx, qy, zero_depth);
  const bool deeper = h > m.depth;
  const TimeUnderWater under =
      time_under_water({m.arrival, m.under_water_since, m.time_under_water}, h > arrival_depth, t);
  return {.depth = deeper ? h : m.depth,
          .time_of_depth = deeper ? t : m.time_of_depth,
          .level = higher_level(m.level, bed + h, is_wet(h, zero_depth)),
          .speed_squared = larger_speed_squared(m.speed_squared, h, q2),
          .discharge_squared = larger(m.discharge_squared, q2),
          .arrival = under.arrival,
          .under_water_since = under.since,
          .time_under_water = under.sum};
}

/// Time under water up to a time t (s), with the spell that goes on.
QM_HD inline double time_under_water_until(const FlowMaxima& m, double t) {
  return has_been(m.under_water_since) ? m.time_under_water + (t - m.under_water_since)
                                       : m.time_under_water;
}

}  // namespace physics
