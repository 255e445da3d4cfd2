#include "fields/CompiledFlow.hpp"

#include "fields/StepWatch.hpp"
#include "fields/flow_survey.hpp"
#include "globals/Globals.hpp"

namespace fields {

using cases::at;
using cases::Number;

double CompiledFlow::advance(const StepTimes& times) {
  Globals::t = times.t;
  Globals::dt = times.dt;
  Globals_Params::tStart = times.t_start;
  Globals_Params::tEnd = times.t_end;
  return compiled_->advance();
}

/// What the tables do not hold has not changed since they were made.
double CompiledFlow::value_of(Number cell, const engine::CellOutput& state, Field field) const {
  switch (field) {
    case Field::depth:
      return state.h;
    case Field::discharge_x:
      return state.qx;
    case Field::discharge_y:
      return state.qy;
    case Field::largest_depth:
      return state.max_h;
    case Field::infiltrated_depth:
      return tables().has_soil() ? state.infiltrated
                                 : model_.cells[at(cell)]->param.infiltrated_depth;
    case Field::bed_level:
      return state.bed;
    case Field::sediment_thickness:
      return state.hs;
    case Field::bed_load_x:
      return state.qsx;
    case Field::bed_load_y:
      return state.qsy;
  }
  return 0.0;
}

void CompiledFlow::read(Field field, std::span<double> values) const {
  compiled_->tables().read_cells([&](Number cell, const engine::CellOutput& state) {
    values[at(cell)] = value_of(cell, state, field);
  });
}

void CompiledFlow::read(Field field, std::span<const Number> cells,
                        std::span<double> values) const {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    values[i] = value_of(cells[i], tables().cell(cells[i]), field);
  }
}

CellState CompiledFlow::state(Number cell) const {
  const engine::CellOutput state = tables().cell(cell);
  return {state.h,   state.qx,     state.qy,  state.hs, state.qsx,
          state.qsy, state.dqs_dh, state.bed, state.eta};
}

FlowSurvey CompiledFlow::survey() const {
  const engine::StateColumns columns = tables().states();
  const auto state_at = [&](int place) {
    return SurveyedState{columns.h[place],
                         columns.qx[place],
                         columns.qy[place],
                         {columns.reciprocal[place], columns.celerity[place]}};
  };
  FlowSurvey result =
      survey_states(static_cast<int>(columns.cells), Constants::ZERO_DEPTH, state_at);
  if (result.not_finite > 0) {
    const std::vector<int>& places = tables().places();
    result.a_cell_not_finite = lost_cell_in_the_middle(
        static_cast<Number>(columns.cells), [&](Number cell) { return state_at(places[at(cell)]); },
        [&](Number cell) {
          const MeshNode& center = model_.cells[at(cell)]->center;
          return physics::PlanPoint{center.x, center.y};
        });
  }
  return result;
}

void CompiledFlow::watch() { compiled_->tables().watch(StepWatch(model_).notes()); }

UnseenDepth CompiledFlow::unseen_depth(Number cell) const {
  const engine::UnseenDepths depths = tables().unseen_depths(cell);
  return {depths.recovered, depths.lifted};
}

BoundaryInflow CompiledFlow::boundary_inflow(int boundary) const {
  const engine::BoundaryInflow inflow = tables().boundary_inflow(boundary);
  return {inflow.water, inflow.bed};
}

}  // namespace fields
