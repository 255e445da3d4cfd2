#include "fields/TablesFlow.hpp"

#include <algorithm>

#include "fields/flow_survey.hpp"
#include "fields/maxima_values.hpp"
#include "utils/not_hyperbolic.hpp"

namespace fields {

TablesFlow::TablesFlow(const cases::Case& contents, cases::Diagnostics& diagnostics, int threads,
                       int cells_per_patch, const std::optional<std::string>& instruction_set)
    : case_(contents),
      diagnostics_(diagnostics),
      engine_(contents, threads, cells_per_patch, instruction_set) {}

double TablesFlow::advance(const StepTimes& times) {
  const double step = engine_.advance(times);
  if (const auto& found = engine_.not_hyperbolic()) {
    diagnostics_.warn(utils::not_hyperbolic(found->place, times.t, found->h, found->qx, found->qy));
  }
  return step;
}

const engine::Column* TablesFlow::column_of(Field field) const {
  const engine::CellTable& cells = engine_.tables().cells;
  const auto if_kept = [](const engine::Column& column) {
    return column.empty() ? nullptr : &column;
  };
  switch (field) {
    case Field::depth:
      return &cells.h;
    case Field::discharge_x:
      return &cells.qx;
    case Field::discharge_y:
      return &cells.qy;
    case Field::infiltrated_depth:
      return if_kept(cells.infiltrated);
    case Field::bed_level:
      return &cells.bed;
    case Field::sediment_thickness:
      return if_kept(cells.hs);
    case Field::bed_load_x:
      return if_kept(cells.qsx);
    case Field::bed_load_y:
      return if_kept(cells.qsy);
    case Field::largest_depth:
      return &cells.max_h;
    case Field::peak_depth:
    case Field::peak_level:
    case Field::peak_speed:
    case Field::peak_discharge:
    case Field::time_of_peak:
    case Field::arrival_time:
    case Field::time_under_water:
      return nullptr;  // see of_maxima
  }
  return nullptr;
}

double TablesFlow::of_maxima(Field field, cases::Number cell) const {
  const engine::Tables& tables = engine_.tables();
  if (!tables.maxima) return NAN;
  const auto place = static_cast<std::size_t>(tables.place[cases::at(cell)]);
  return value_of(field, tables.maxima->at_place(place, tables.cells.bed[place], tables.zero_depth),
                  tables.maxima->t);
}

void TablesFlow::read(Field field, std::span<double> values) const {
  if (is_of_maxima(info(field))) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = of_maxima(field, static_cast<cases::Number>(i));
    }
  } else if (const engine::Column* const column = column_of(field)) {
    engine_.read(*column, values);
  } else if (field == Field::infiltrated_depth && !case_.fields.infiltrated.empty()) {
    std::copy(case_.fields.infiltrated.begin(), case_.fields.infiltrated.end(), values.begin());
  } else {
    std::fill(values.begin(), values.end(), 0.0);
  }
}

void TablesFlow::read(Field field, std::span<const cases::Number> cells,
                      std::span<double> values) const {
  if (is_of_maxima(info(field))) {
    for (std::size_t i = 0; i < cells.size(); ++i) values[i] = of_maxima(field, cells[i]);
    return;
  }
  if (const engine::Column* const column = column_of(field)) {
    engine_.read(*column, cells, values);
    return;
  }
  const bool has_soaked = field == Field::infiltrated_depth && !case_.fields.infiltrated.empty();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    values[i] = has_soaked ? case_.fields.infiltrated[cases::at(cells[i])] : 0.0;
  }
}

CellState TablesFlow::state(cases::Number cell) const {
  const engine::CellTable& c = engine_.tables().cells;
  const auto k = static_cast<std::size_t>(engine_.tables().place[cases::at(cell)]);
  const auto value = [&](const engine::Column& column) { return column.empty() ? 0.0 : column[k]; };
  return {.h = c.h[k],
          .qx = c.qx[k],
          .qy = c.qy[k],
          .hs = value(c.hs),
          .qsx = value(c.qsx),
          .qsy = value(c.qsy),
          .dqs_dh = value(c.dqs_dh),
          .bed_level = c.bed[k],
          .water_level = c.eta.empty() ? c.bed[k] + c.h[k] : c.eta[k]};
}

FlowSurvey TablesFlow::survey() const {
  const engine::Tables& tables = engine_.tables();
  const auto state_at = [&](int place) {
    const auto k = static_cast<std::size_t>(place);
    const double h = tables.cells.h[k];
    return SurveyedState{h, tables.cells.qx[k], tables.cells.qy[k],
                         physics::depth_terms(h, tables.zero_depth)};
  };
  const auto state_of = [&](cases::Number cell) { return state_at(tables.place[cases::at(cell)]); };
  const auto center_of = [&](cases::Number cell) {
    const physics::SpacePoint center = case_.mesh.center_of(cell);
    return physics::PlanPoint{center.x, center.y};
  };
  return survey_flow(case_.mesh.n_cells(), tables.zero_depth, state_at, state_of, center_of);
}

ExecutionPath TablesFlow::execution_path() const {
  return {"tables", engine_.threads(), engine_.instruction_set()};
}

UnseenDepth TablesFlow::unseen_depth(cases::Number cell) const {
  const engine::UnseenDepths depths = engine_.unseen_depths(cell);
  return {depths.recovered, depths.lifted, depths.taken_discharge};
}

BoundaryInflow TablesFlow::boundary_inflow(int boundary) const {
  return engine_.boundary_inflow(boundary);
}

}  // namespace fields
