#include "fields/ObjectsFlow.hpp"

#include "fields/flow_survey.hpp"
#include "globals/Globals.hpp"

namespace fields {

using cases::Number;

namespace {

double value_of(const ComputationalCell& cell, Field field) {
  switch (field) {
    case Field::depth:
      return cell.U.h;
    case Field::discharge_x:
      return cell.U.qx;
    case Field::discharge_y:
      return cell.U.qy;
    case Field::largest_depth:
      return cell.max_values.h;
    case Field::infiltrated_depth:
      return cell.param.infiltrated_depth;
    case Field::bed_level:
      return cell.bed_level;
    case Field::sediment_thickness:
      return cell.U.hs;
    case Field::bed_load_x:
      return cell.U.qsx;
    case Field::bed_load_y:
      return cell.U.qsy;
  }
  return 0.0;
}

ModelObjects objects_of(const cases::Case& contents) {
  Globals::t = Globals_Params::tStart = contents.t_start;
  Globals_Params::tEnd = contents.t_end;
  Constants::ZERO_DEPTH = contents.zero_depth;
  Globals_Sed::g_d50 = contents.sediment.d50;
  Globals_Sed::g_sedimentsDensity = contents.sediment.density;
  Globals_Sed::g_sedimentsManning = contents.sediment.manning;
  Globals_Sed::g_sedimentsPorosity = contents.sediment.porosity;
  return build_objects(contents);
}

}  // namespace

ObjectsFlow::ObjectsFlow(const cases::Case& contents)
    : objects_(objects_of(contents)), model_(*objects_.model) {}

double ObjectsFlow::advance(const StepTimes& times) {
  Globals::t = times.t;
  Globals::dt = times.dt;
  Globals_Params::tStart = times.t_start;
  Globals_Params::tEnd = times.t_end;
  const double step = model_.computeFlowStep();
  if (watch_) watch_->note_states(step);
  return step;
}

void ObjectsFlow::read(Field field, std::span<double> values) const {
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = value_of(*model_.cells[i], field);
}

void ObjectsFlow::read(Field field, std::span<const Number> cells, std::span<double> values) const {
  for (std::size_t i = 0; i < cells.size(); ++i) values[i] = value_of(cell(cells[i]), field);
}

CellState ObjectsFlow::state(Number number) const {
  const ComputationalCell& of = cell(number);
  const HydraulicVariableSWE& U = of.U;
  return {U.h, U.qx, U.qy, U.hs, U.qsx, U.qsy, of.dqs_dh, of.bed_level, of.free_surface_level};
}

FlowSurvey ObjectsFlow::survey() const {
  const auto state_of = [&](Number number) {
    const HydraulicVariableSWE& U = cell(number).U;
    return SurveyedState{U.h, U.qx, U.qy, physics::depth_terms(U.h, Constants::ZERO_DEPTH)};
  };
  const auto center_of = [&](Number number) {
    const MeshNode& center = cell(number).center;
    return physics::PlanPoint{center.x, center.y};
  };
  return survey_flow(static_cast<Number>(model_.cells.size()), Constants::ZERO_DEPTH, state_of,
                     state_of, center_of);
}

void ObjectsFlow::watch() {
  watch_ = std::make_unique<StepWatch>(model_);
  model_.observer = watch_.get();
  for (const auto& interface : model_.interfaces) {
    if (interface->cell_right == nullptr) boundaries_.push_back(interface.get());
  }
}

BoundaryInflow ObjectsFlow::boundary_inflow(int boundary) const {
  const GenericInterface& edge = *boundaries_[static_cast<std::size_t>(boundary)];
  const FluxSlots& slots = edge.cell_left->fluxes;
  const HydraulicVariableSWE& slot = slots[edge.local_index_left];
  return {slot.h, slot.hs};
}

}  // namespace fields
