#include "model/flow_survey.hpp"

#include <cmath>
#include <limits>
#include <vector>

#include "globals/Globals.hpp"
#include "model/PhysicalModel.hpp"
#include "model/engine_bridge.hpp"
#include "physics/flow_extremes.hpp"

namespace {

struct State {
  double h, qx, qy;
  physics::DepthTerms terms;
};

bool is_finite(const State& state) { return physics::is_finite_state(state.h, state.qx, state.qy); }

/// Looks at the states 0 to count - 1, in any order.
template <class StateAt>
FlowSurvey survey(int count, StateAt state_at) {
  FlowSurvey result;
  physics::FlowExtremes all;
  for (int i = 0; i < count; ++i) {
    const State state = state_at(i);
    result.wet_cells += is_finite(state) && physics::is_wet(state.h, Constants::ZERO_DEPTH) ? 1 : 0;
    all =
        physics::united(all, physics::extremes_of_state(state.h, state.qx, state.qy, state.terms));
  }
  result.largest_speed = std::sqrt(all.speed_squared);
  result.not_finite = all.not_finite;
  return result;
}

/// What is not a number spreads from cell to cell: the middle is where it began, more or less.
template <class StateAt>
int cell_in_the_middle(const PhysicalModel& model, StateAt state_of_cell) {
  std::vector<int> cells;
  double x = 0.0, y = 0.0;
  for (int i = 0; i < static_cast<int>(model.cells.size()); ++i) {
    if (is_finite(state_of_cell(i))) continue;
    cells.push_back(i);
    x += model.cells[static_cast<std::size_t>(i)]->center.x;
    y += model.cells[static_cast<std::size_t>(i)]->center.y;
  }
  const auto count = static_cast<double>(cells.size());
  // The first one, where the coordinates are too large for a middle.
  int nearest = cells.empty() ? -1 : cells.front();
  double least = std::numeric_limits<double>::infinity();
  for (const int cell : cells) {
    const MeshNode& center = model.cells[static_cast<std::size_t>(cell)]->center;
    const double distance = std::hypot(center.x - x / count, center.y - y / count);
    if (distance < least) {
      least = distance;
      nearest = cell;
    }
  }
  return nearest;
}

}  // namespace

FlowSurvey survey_flow(const PhysicalModel& model) {
  if (!model.engine) {
    const auto state = [&](int cell) {
      const HydraulicVariableSWE& U = model.cells[static_cast<std::size_t>(cell)]->U;
      return State{U.h, U.qx, U.qy, physics::depth_terms(U.h, Constants::ZERO_DEPTH)};
    };
    FlowSurvey result = survey(static_cast<int>(model.cells.size()), state);
    if (result.not_finite > 0) result.a_cell_not_finite = cell_in_the_middle(model, state);
    return result;
  }
  const engine::StateColumns columns = model.engine->tables().states();
  const auto state = [&](int place) {
    return State{columns.h[place],
                 columns.qx[place],
                 columns.qy[place],
                 {columns.reciprocal[place], columns.celerity[place]}};
  };
  FlowSurvey result = survey(static_cast<int>(columns.cells), state);
  if (result.not_finite > 0) {
    const std::vector<int>& places = model.engine->tables().places();
    result.a_cell_not_finite = cell_in_the_middle(
        model, [&](int cell) { return state(places[static_cast<std::size_t>(cell)]); });
  }
  return result;
}
