#include "case/implausible_case.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "case/initial_state.hpp"
#include "case/plausibility.hpp"
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

void warn_of_outflows(const Case& contents, Diagnostics& diagnostics) {
  const auto depth_at = [&](const Boundary& boundary) {
    return initial_water_of(contents, contents.mesh.left[at(boundary.edge)]).h;
  };
  long count = 0;
  const Boundary* largest = nullptr;
  for (const Boundary& boundary : contents.mesh.boundaries) {
    const double outflow = largest_outflow(contents, boundary);
    if (!(outflow > 0.0) || depth_at(boundary) > contents.zero_depth) continue;
    ++count;
    if (largest == nullptr || outflow > largest_outflow(contents, *largest)) largest = &boundary;
  }
  if (largest == nullptr) return;
  warn_if(plausibility::on_outflow(
              "the imposed discharge of " + utils::counted(count, "edge") + ", such as edge " +
                  std::to_string(largest->edge) + " (counted from 0),",
              largest_outflow(contents, *largest), depth_at(*largest), contents.zero_depth),
          diagnostics);
}

}  // namespace

void warn_of_implausible_parameters(const Case& contents, Diagnostics& diagnostics) {
  warn_if(plausibility::on_run_time(contents.t_start, contents.t_end), diagnostics);
  warn_if(plausibility::on_courant_number(contents.cfl), diagnostics);
  warn_if(plausibility::on_dry_depth(contents.zero_depth, contents.has_sediments), diagnostics);
  warn_if(plausibility::on_infiltration(contents.has_infiltration, contents.has_sediments),
          diagnostics);
}

void warn_of_implausible_fields(const Case& contents, const DataFile& data,
                                const AreaLoss& area_loss, Diagnostics& diagnostics) {
  const CellFields& fields = contents.fields;
  const auto name_of = [&](const Key& key) {
    const std::string* const name = data.cell_files.find(key);
    return name != nullptr ? *name : "";
  };
  if (!fields.manning.empty()) {
    warn_if(plausibility::on_friction(name_of(key("model/conditions/friction")), fields.manning),
            diagnostics);
  }
  for (const std::string& remark : plausibility::on_initial_infiltration(
           name_of(key("model/sources/initial infiltration")), fields.infiltrated)) {
    diagnostics.warn(plausibility::sentence(remark));
  }
  warn_of_outflows(contents, diagnostics);
  warn_if(area_loss.remark(), diagnostics);
}

}  // namespace cases
