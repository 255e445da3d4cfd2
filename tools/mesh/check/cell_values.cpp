#include "mesh/check/cell_values.hpp"

#include <algorithm>
#include <cmath>

#include "case/finite_geometry.hpp"
#include "globals/Globals.hpp"
#include "model/ComputationalCell.hpp"
#include "physics/stable_step.hpp"

namespace tools::check {

namespace {

double value_or(const std::vector<double>& field, std::size_t cell, double otherwise) {
  return field.empty() ? otherwise : field[cell];
}

CellValues values_of(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.UVal();
  const bool is_wet = U.h > Constants::ZERO_DEPTH;
  return {.center = cell.center,
          .area = cell.area,
          .accurate_area = cell.accurate_area(),
          .char_length = cell.char_length,
          .bed = cell.bed_level,
          .depth = U.h,
          .velocity = is_wet ? std::hypot(U.qx, U.qy) / U.h : 0.0,
          .step = cell.dtMin(),
          .has_finite_geometry = cases::is_finite({{cell.center.x, cell.center.y, cell.center.z},
                                                   cell.area,
                                                   cell.perimeter,
                                                   cell.max_node_level})};
}

}  // namespace

std::vector<CellValues> cell_values(const DataFile& data, const CaseMesh& mesh,
                                    const CaseFields& fields) {
  Constants::ZERO_DEPTH = data.zero_depth;
  std::vector<CellValues> values;
  values.reserve(static_cast<std::size_t>(mesh.n_cells()));
  for (int i = 0; i < mesh.n_cells(); ++i) {
    const auto k = static_cast<std::size_t>(i);
    ComputationalCell cell(i, mesh.corners(i));
    if (!fields.bed_rock.empty()) cell.set_bed_rock_level(fields.bed_rock[k]);
    cell.set_hs(value_or(fields.sediment, k, 0.0));
    cell.set_hydrodynamic_values(value_or(fields.level, k, cell.bed_level),
                                 value_or(fields.qx, k, 0.0), value_or(fields.qy, k, 0.0));
    values.push_back(values_of(cell));
  }
  return values;
}

std::optional<double> first_time_step(const DataFile& data, const CaseFields& fields,
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
