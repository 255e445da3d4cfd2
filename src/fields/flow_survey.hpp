// One look at the whole flow: how much of it is wet, where it is fastest, and whether every state
// is a number.
#pragma once

#include <cmath>
#include <vector>

#include "fields/Flow.hpp"
#include "physics/flow_extremes.hpp"

namespace fields {

struct SurveyedState {
  double h, qx, qy;
  physics::DepthTerms terms;

  bool is_finite() const { return physics::is_finite_state(h, qx, qy); }
};

/// Looks at the states 0 to count - 1, in any order; which cell is lost is left open.
template <class StateAt>
FlowSurvey survey_states(int count, double zero_depth, const StateAt& state_at) {
  FlowSurvey result;
  physics::FlowExtremes all;
  for (int i = 0; i < count; ++i) {
    const SurveyedState state = state_at(i);
    result.wet_cells += state.is_finite() && physics::is_wet(state.h, zero_depth) ? 1 : 0;
    all =
        physics::united(all, physics::extremes_of_state(state.h, state.qx, state.qy, state.terms));
  }
  result.largest_speed = std::sqrt(all.speed_squared);
  result.not_finite = all.not_finite;
  return result;
}

/// What is not a number spreads from cell to cell: the middle is where it began, more or less.
template <class StateOf, class CenterOf>
cases::Number lost_cell_in_the_middle(cases::Number n_cells, const StateOf& state_of,
                                      const CenterOf& center_of) {
  std::vector<cases::Number> cells;
  utils::ExactSum sum_x, sum_y;
  for (cases::Number cell = 0; cell < n_cells; ++cell) {
    if (state_of(cell).is_finite()) continue;
    cells.push_back(cell);
    const physics::PlanPoint center = center_of(cell);
    sum_x.add(center.x);
    sum_y.add(center.y);
  }
  const auto count = static_cast<double>(cells.size());
  const double x = sum_x.value() / count, y = sum_y.value() / count;
  NearestSeen nearest;
  for (const cases::Number cell : cells) {
    const physics::PlanPoint center = center_of(cell);
    nearest.note(std::hypot(center.x - x, center.y - y), cell);
  }
  return nearest.nearest();
}

/// Both: `state_at` knows the states in any order, `state_of` those of the cells by their numbers.
template <class StateAt, class StateOf, class CenterOf>
FlowSurvey survey_flow(cases::Number n_cells, double zero_depth, const StateAt& state_at,
                       const StateOf& state_of, const CenterOf& center_of) {
  FlowSurvey result = survey_states(n_cells, zero_depth, state_at);
  if (result.not_finite > 0) {
    result.a_cell_not_finite = lost_cell_in_the_middle(n_cells, state_of, center_of);
  }
  return result;
}

}  // namespace fields
