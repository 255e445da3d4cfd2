#include "case/implausible_case.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "case/initial_state.hpp"
#include "utils/counted.hpp"

namespace cases {

namespace {

void warn_if(const plausibility::Remark& remark, Diagnostics& diagnostics) {
  if (remark) diagnostics.warn(plausibility::sentence(*remark));
}

/// The largest discharge that a boundary imposes outwards, m2/s; 0 if it imposes none.
double largest_outflow(const Case& contents, const Boundary& boundary) {
  const BoundaryKind& kind = *boundary_kind(boundary.code);
  if (!kind.imposes_discharge()) return 0.0;
  if (kind.has_value()) return boundary.value;
  const std::vector<double>& values = contents.series[at(boundary.series)].values;
  return *std::max_element(values.begin(), values.end());
}

/// Cells and edges of a case by numbers that ascend with their own.
template <class NumberOfCell, class NumberOfEdge>
ImplausibleFields find(const Case& contents, Number cells, const NumberOfCell& number_of_cell,
                       const NumberOfEdge& number_of_edge) {
  ImplausibleFields found;
  const auto note = [&](plausibility::Outliers& outliers, double value, Number cell) {
    outliers.note(value, at(number_of_cell(cell)));
  };
  const std::vector<double>& manning = contents.fields.manning;
  for (Number cell = 0; cell < cells && !manning.empty(); ++cell) {
    const double n = manning[at(cell)];
    if (plausibility::is_strange_friction(n)) note(found.friction, n, cell);
  }
  const std::vector<double>& infiltrated = contents.fields.infiltrated;
  for (Number cell = 0; cell < cells && !infiltrated.empty(); ++cell) {
    const double F = infiltrated[at(cell)];
    if (plausibility::is_infiltration_below_zero(F)) note(found.infiltration_below_zero, F, cell);
    if (plausibility::is_deep_infiltration(F)) note(found.deep_infiltration, F, cell);
  }
  for (const Boundary& boundary : contents.mesh.boundaries) {
    const Number left = contents.mesh.left[at(boundary.edge)];
    if (left >= cells) continue;
    const double outflow = largest_outflow(contents, boundary);
    if (!(outflow > 0.0)) continue;
    const double depth = initial_water_of(contents, left).h;
    if (depth > contents.zero_depth) continue;
    found.add({.outflows = 1,
               .edge = number_of_edge(boundary.edge),
               .discharge = outflow,
               .depth = depth});
  }
  return found;
}

void warn_of_outflows(const ImplausibleFields& found, const Case& contents,
                      Diagnostics& diagnostics) {
  if (found.outflows == 0) return;
  warn_if(plausibility::on_outflow("the imposed discharge of " +
                                       utils::counted(found.outflows, "edge") + ", such as edge " +
                                       std::to_string(found.edge) + " (counted from 0),",
                                   found.discharge, found.depth, contents.zero_depth),
          diagnostics);
}

}  // namespace

void ImplausibleFields::add(const ImplausibleFields& other) {
  friction.add(other.friction);
  infiltration_below_zero.add(other.infiltration_below_zero);
  deep_infiltration.add(other.deep_infiltration);
  const bool is_larger =
      other.discharge > discharge || (other.discharge == discharge && other.edge < edge);
  if (other.outflows > 0 && (outflows == 0 || is_larger)) {
    edge = other.edge;
    discharge = other.discharge;
    depth = other.depth;
  }
  outflows += other.outflows;
}

ImplausibleFields implausible_fields(const Case& contents) {
  const auto same = [](Number number) { return number; };
  return find(contents, contents.mesh.n_cells(), same, same);
}

ImplausibleFields implausible_fields(const Part& part) {
  return find(
      part.contents, part.owned, [&](Number cell) { return part.cell_number[at(cell)]; },
      [&](Number edge) { return part.edge_number[at(edge)]; });
}

void warn_of_implausible_parameters(const Case& contents, Diagnostics& diagnostics) {
  warn_if(plausibility::on_run_time(contents.t_start, contents.t_end), diagnostics);
  warn_if(plausibility::on_courant_number(contents.cfl), diagnostics);
  warn_if(plausibility::on_dry_depth(contents.zero_depth, contents.has_sediments), diagnostics);
  warn_if(plausibility::on_infiltration(contents.has_infiltration, contents.has_sediments),
          diagnostics);
}

void warn_of_implausible_fields(const ImplausibleFields& found, const Case& contents,
                                const DataFile& data, const AreaLoss& area_loss,
                                Diagnostics& diagnostics) {
  const auto name_of = [&](const Key& key) {
    const std::string* const name = data.cell_files.find(key);
    return name != nullptr ? *name : "";
  };
  warn_if(plausibility::on_friction(name_of(key("model/conditions/friction")), found.friction),
          diagnostics);
  for (const std::string& remark : plausibility::on_initial_infiltration(
           name_of(key("model/sources/initial infiltration")), found.infiltration_below_zero,
           found.deep_infiltration)) {
    diagnostics.warn(plausibility::sentence(remark));
  }
  warn_of_outflows(found, contents, diagnostics);
  warn_if(area_loss.remark(), diagnostics);
}

}  // namespace cases
