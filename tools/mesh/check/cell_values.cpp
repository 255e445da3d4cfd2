#include "mesh/check/cell_values.hpp"

#include <algorithm>
#include <cmath>

#include "case/finite_geometry.hpp"
#include "case/initial_state.hpp"
#include "physics/stable_step.hpp"

namespace tools::check {

namespace {

CellValues values_of(const cases::Case& contents, cases::Number cell) {
  const cases::CellGeometry geometry = contents.mesh.geometry_of(cell);
  const double zero_depth = contents.zero_depth;
  physics::InitialWater water{0.0, 0.0, 0.0};
  if (!contents.fields.level.empty()) water = cases::initial_water_of(contents, cell);
  const bool is_wet = water.h > zero_depth;
  return {
      .center = geometry.center,
      .area = geometry.area,
      .accurate_area = contents.mesh.accurate_area_of(cell),
      .char_length = geometry.char_length(),
      .bed = cases::bed_level_of(contents, cell),
      .depth = water.h,
      .velocity = is_wet ? std::hypot(water.qx, water.qy) / water.h : 0.0,
      .step = physics::stable_step(water.h, water.qx, water.qy, geometry.char_length(), zero_depth),
      .has_finite_geometry = cases::is_finite(geometry)};
}

}  // namespace

std::vector<CellValues> cell_values(const cases::Case& contents) {
  std::vector<CellValues> values;
  values.reserve(cases::at(contents.mesh.n_cells()));
  for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    values.push_back(values_of(contents, cell));
  }
  return values;
}

std::optional<double> first_time_step(const DataFile& data, const cases::CellFields& fields,
                                      const std::vector<CellValues>& cells) {
  if (!data.cfl || (fields.level.empty() && !cells.empty())) return {};
  double h0 = 0.0;
  double char_length_min = 1e20;
  for (const CellValues& cell : cells) {
    h0 = std::max(h0, cell.depth);
    char_length_min = std::min(char_length_min, cell.char_length);
  }
  const double dry_step = physics::stable_step_dry(char_length_min, h0, data.zero_depth);
  double step = physics::unbounded_step;
  for (const CellValues& cell : cells) {
    step = std::min(step, cell.depth <= data.zero_depth ? dry_step : cell.step);
  }
  return *data.cfl * physics::stable_step_domain(step, char_length_min);
}

}  // namespace tools::check
