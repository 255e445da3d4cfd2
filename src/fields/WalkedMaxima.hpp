// The maxima of a flow that is walked cell by cell: the plain statement of what is kept.
#pragma once

#include <vector>

#include "fields/Flow.hpp"
#include "physics/flow_maxima.hpp"

namespace fields {

class WalkedMaxima {
 public:
  WalkedMaxima(std::size_t cells, double zero_depth, double arrival_depth)
      : maxima_(cells), zero_depth_(zero_depth), arrival_depth_(arrival_depth) {}

  /// The states of all cells, at their time (s).
  void note(double t, const Flow& flow) {
    for (std::size_t i = 0; i < maxima_.size(); ++i) {
      const CellState state = flow.state(static_cast<cases::Number>(i));
      maxima_[i] = physics::with_state(maxima_[i], t, state.h, state.qx, state.qy, state.bed_level,
                                       zero_depth_, arrival_depth_);
    }
    t_ = t;
  }
  /// Of all cells, as the state of a flow holds them.
  void save(engine::State& state, bool bed_moves) const {
    for_each_column(state, bed_moves, [&](std::vector<double>& column, auto member) {
      column.clear();
      for (const physics::FlowMaxima& maxima : maxima_) column.push_back(maxima.*member);
    });
  }
  /// Goes on from those; `level_at(cell, depth)` (m) is the one of a depth where no bed moves.
  template <class LevelAt>
  void load(const engine::State& state, bool bed_moves, const LevelAt& level_at) {
    for_each_column(state, bed_moves, [&](const std::vector<double>& column, auto member) {
      for (std::size_t i = 0; i < maxima_.size(); ++i) maxima_[i].*member = column[i];
    });
    if (bed_moves) return;
    for (std::size_t i = 0; i < maxima_.size(); ++i) {
      const double depth = maxima_[i].depth;
      maxima_[i].level = physics::is_wet(depth, zero_depth_)
                             ? level_at(static_cast<cases::Number>(i), depth)
                             : physics::FlowMaxima{}.level;
    }
  }
  const physics::FlowMaxima& of(cases::Number cell) const { return maxima_[cases::at(cell)]; }
  /// Up to which they hold, s.
  double t() const { return t_; }

 private:
  /// Calls visit(a column of a state, the member of FlowMaxima) for those that are kept.
  template <class State, class Visit>
  static void for_each_column(State& state, bool bed_moves, const Visit& visit) {
    using physics::FlowMaxima;
    visit(state.peak_depth, &FlowMaxima::depth);
    visit(state.time_of_peak, &FlowMaxima::time_of_depth);
    if (bed_moves) visit(state.peak_level, &FlowMaxima::level);
    visit(state.peak_speed_squared, &FlowMaxima::speed_squared);
    visit(state.peak_discharge_squared, &FlowMaxima::discharge_squared);
    visit(state.arrival_time, &FlowMaxima::arrival);
    visit(state.under_water_since, &FlowMaxima::under_water_since);
    visit(state.time_under_water, &FlowMaxima::time_under_water);
  }

  std::vector<physics::FlowMaxima> maxima_;
  double zero_depth_, arrival_depth_;  ///< m
  double t_ = 0.0;                     ///< s
};

}  // namespace fields
