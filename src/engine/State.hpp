// The state of a run: all that its further steps depend on besides its case and its clock.
#pragma once

#include <vector>

#include "physics/rain.hpp"

namespace engine {

/// Columns over the cells in the order of the case, and the clocks of its hyetograms. Columns that
/// the case does not need are empty.
struct State {
  std::vector<double> h, qx, qy;  ///< m, m2/s
  /// Free surface of the start, m; empty after the first step, when it is bed and depth.
  std::vector<double> eta;
  std::vector<double> max_h;                 ///< largest depth so far, m
  std::vector<double> infiltrated;           ///< m
  std::vector<double> hs, qsx, qsy, dqs_dh;  ///< sediment: m, m2/s, m/s
  std::vector<physics::RainClock> rain_clocks;
  // What a caller imposes in place of the case; nothing where it is NaN, or the column empty.
  std::vector<double> imposed_on_boundaries;  ///< of the case, m2/s or m
  std::vector<double> imposed_rain;           ///< on the cells, m/s
};

/// The columns of the flow in the cells, for who saves, compares or cuts states.
inline constexpr std::vector<double> State::*columns_of_flow[] = {
    &State::h,           &State::qx, &State::qy,  &State::eta, &State::max_h,
    &State::infiltrated, &State::hs, &State::qsx, &State::qsy, &State::dqs_dh};

}  // namespace engine
