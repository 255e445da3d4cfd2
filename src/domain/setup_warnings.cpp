// Warnings before the first step about what the run accepts and what hardly was meant.
#include <algorithm>
#include <string>
#include <vector>

#include "case/initial_state.hpp"
#include "case/plausibility.hpp"
#include "domain/Domain.hpp"
#include "globals/edge_codes.hpp"
#include "utils/counted.hpp"
#include "utils/stop.hpp"

namespace {

void warn_if(const plausibility::Remark& remark) {
  if (remark) utils::warn(plausibility::sentence(*remark));
}

/// The largest discharge that a boundary imposes outwards, m2/s; 0 if it imposes none.
double largest_outflow(const cases::Case& contents, const cases::Boundary& boundary) {
  if (boundary.code == edge_code::discharge) return boundary.value;
  if (boundary.code != edge_code::hydrograph) return 0.0;
  const std::vector<double>& values = contents.series[cases::at(boundary.series)].values;
  return *std::max_element(values.begin(), values.end());
}

}  // namespace

void Domain::warn_of_implausible_input() const {
  warn_if(plausibility::on_run_time(case_.t_start, case_.t_end));
  warn_if(plausibility::on_courant_number(case_.cfl));
  warn_if(plausibility::on_dry_depth(case_.zero_depth, case_.has_sediments));
  warn_if(plausibility::on_infiltration(case_.has_infiltration, case_.has_sediments));
  warn_if(plausibility::on_interval("\"output/time step enveloppe of results\"", dt_enveloppe));
  if (gauge) {
    warn_if(plausibility::on_interval(gauges_file + ": the recording interval", gauge->interval()));
  }
  if (monitor_section) {
    warn_if(plausibility::on_interval(discharge_file + ": the recording interval",
                                      monitor_section->interval()));
  }
  warn_of_implausible_fields();
  warn_of_outflows();
  warn_if(area_loss.remark());
}

void Domain::warn_of_implausible_fields() const {
  const cases::CellFields& fields = case_.fields;
  if (!fields.manning.empty()) warn_if(plausibility::on_friction(friction_file, fields.manning));
  for (const std::string& remark :
       plausibility::on_initial_infiltration(initial_infiltration_file, fields.infiltrated)) {
    utils::warn(plausibility::sentence(remark));
  }
}

void Domain::warn_of_outflows() const {
  const auto depth_at = [&](const cases::Boundary& boundary) {
    return cases::initial_water_of(case_, case_.mesh.left[cases::at(boundary.edge)]).h;
  };
  long count = 0;
  const cases::Boundary* largest = nullptr;
  for (const cases::Boundary& boundary : case_.mesh.boundaries) {
    const double outflow = largest_outflow(case_, boundary);
    if (!(outflow > 0.0) || depth_at(boundary) > case_.zero_depth) continue;
    ++count;
    if (largest == nullptr || outflow > largest_outflow(case_, *largest)) largest = &boundary;
  }
  if (largest == nullptr) return;
  warn_if(plausibility::on_outflow(
      "the imposed discharge of " + utils::counted(count, "edge") + ", such as edge " +
          std::to_string(largest->edge) + " (counted from 0),",
      largest_outflow(case_, *largest), depth_at(*largest), case_.zero_depth));
}
