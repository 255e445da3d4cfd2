// Warnings before the first step about what the run accepts and what hardly was meant.
#include <algorithm>
#include <string>
#include <vector>

#include "case/plausibility.hpp"
#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "utils/counted.hpp"
#include "utils/stop.hpp"

namespace {

void warn_if(const plausibility::Remark& remark) {
  if (remark) utils::warn(plausibility::sentence(*remark));
}

/// The largest discharge that an edge imposes outwards, m2/s; 0 if it imposes none.
double largest_outflow(const GenericInterface& edge) {
  if (const auto* const constant = dynamic_cast<const HydroBCDischarge*>(&edge)) {
    return constant->q_imposed;
  }
  if (const auto* const varying = dynamic_cast<const HydroBCHydrograph*>(&edge)) {
    const std::vector<double>& values = varying->series->values;
    return *std::max_element(values.begin(), values.end());
  }
  return 0.0;
}

template <class ValueOf>
std::vector<double> values_of(const PhysicalModel& model, ValueOf value_of) {
  std::vector<double> values;
  values.reserve(model.cells.size());
  for (const auto& cell : model.cells) values.push_back(value_of(*cell));
  return values;
}

}  // namespace

void Domain::warn_of_implausible_input() const {
  warn_if(plausibility::on_run_time(Globals_Params::tStart, Globals_Params::tEnd));
  warn_if(plausibility::on_courant_number(cfl));
  warn_if(plausibility::on_dry_depth(Constants::ZERO_DEPTH, has_sediments()));
  warn_if(
      plausibility::on_infiltration(is_infiltration || is_initial_infiltration, has_sediments()));
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
  if (is_friction) {
    const auto friction = [](const ComputationalCell& cell) { return cell.friction; };
    warn_if(plausibility::on_friction(friction_file, values_of(*model, friction)));
  }
  if (is_initial_infiltration) {
    const auto depth = [](const ComputationalCell& cell) { return cell.param.infiltrated_depth; };
    const plausibility::Remarks remarks =
        plausibility::on_initial_infiltration(initial_infiltration_file, values_of(*model, depth));
    for (const std::string& remark : remarks) utils::warn(plausibility::sentence(remark));
  }
}

void Domain::warn_of_outflows() const {
  long count = 0;
  const GenericInterface* largest = nullptr;
  for (const auto& edge : model->interfaces) {
    if (edge->cell_right != nullptr) continue;
    const double outflow = largest_outflow(*edge);
    if (!(outflow > 0.0) || edge->cell_left->U.h > Constants::ZERO_DEPTH) continue;
    ++count;
    if (largest == nullptr || outflow > largest_outflow(*largest)) largest = edge.get();
  }
  if (largest == nullptr) return;
  warn_if(plausibility::on_outflow(
      "the imposed discharge of " + utils::counted(count, "edge") + ", such as edge " +
          std::to_string(largest->tag) + " (counted from 0),",
      largest_outflow(*largest), largest->cell_left->U.h, Constants::ZERO_DEPTH));
}
