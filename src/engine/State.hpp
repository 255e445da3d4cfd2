// The state of a run: all that its further steps depend on besides its case and its clock.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <vector>

#include "case/Case.hpp"
#include "physics/flow_extremes.hpp"
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
  // What is kept of the largest flow, see physics::FlowMaxima; empty where it is not asked for.
  std::vector<double> peak_depth, time_of_peak;  ///< m, s
  std::vector<double> peak_level;                ///< m; empty where the bed does not move
  std::vector<double> peak_speed_squared;        ///< m2/s2
  std::vector<double> peak_discharge_squared;    ///< m4/s2
  std::vector<double> arrival_time, under_water_since, time_under_water;  ///< s
  std::vector<physics::RainClock> rain_clocks;
  // What a caller imposes in place of the case; nothing where it is NaN, or the column empty.
  std::vector<double> imposed_on_boundaries;  ///< of the case, m2/s or m
  std::vector<double> imposed_rain;           ///< on the cells, m/s
  /// Whether it was told that the coupled system is not hyperbolic somewhere, which is said once.
  bool has_told_not_hyperbolic = false;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit);
};

using StateColumn = std::vector<double> State::*;

/// What is kept of the largest flow.
inline constexpr StateColumn columns_of_maxima[] = {
    &State::peak_depth,         &State::time_of_peak,           &State::peak_level,
    &State::peak_speed_squared, &State::peak_discharge_squared, &State::arrival_time,
    &State::under_water_since,  &State::time_under_water};

/// The columns of the flow in the cells, those maxima among them, for who saves, compares or cuts
/// states.
inline constexpr auto columns_of_flow = [] {
  constexpr StateColumn without_maxima[] = {
      &State::h,           &State::qx, &State::qy,  &State::eta, &State::max_h,
      &State::infiltrated, &State::hs, &State::qsx, &State::qsy, &State::dqs_dh};
  std::array<StateColumn, std::size(without_maxima) + std::size(columns_of_maxima)> all = {};
  std::copy(std::begin(columns_of_maxima), std::end(columns_of_maxima),
            std::copy(std::begin(without_maxima), std::end(without_maxima), all.begin()));
  return all;
}();

template <class Self, class Visit>
void State::visit_parts(Self& self, const Visit& visit) {
  for (const auto column : columns_of_flow) visit(self.*column);
  visit(self.rain_clocks, self.imposed_on_boundaries, self.imposed_rain,
        self.has_told_not_hyperbolic);
}

/// Whether further steps of a case can begin with a state; `present` is one that they have.
bool fits(const State& state, const State& present, const cases::Case& contents);

/// What the notes of a report hold: what a step tells, and what was summed up for every cell in the
/// order of the case, see fields::UnseenDepth. Columns that nobody sums up are empty.
struct SavedNotes {
  physics::StepNotes of_last_step;
  std::vector<double> recovered, lifted;  ///< m
  std::vector<double> taken_discharge;    ///< m2/s

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.of_last_step, self.recovered, self.lifted, self.taken_discharge);
  }
};

}  // namespace engine
