#include "mesh/check/case_report.hpp"

#include <filesystem>

#include "mesh/check/case_fields.hpp"
#include "mesh/check/case_mesh.hpp"
#include "mesh/check/check_outputs.hpp"
#include "mesh/check/check_scheme.hpp"
#include "mesh/check/check_topology.hpp"
#include "mesh/check/check_values.hpp"
#include "mesh/check/numbers.hpp"
#include "support/Error.hpp"
#include "support/GroundSurvey.hpp"
#include "utils/counted.hpp"
#include "utils/stop.hpp"

namespace tools::check {

namespace {

void check_first_step(CaseReport& report, const cases::CellFields& fields) {
  constexpr double smallest_step = 1e-8;  // s; the simulator stops at it
  report.first_step = first_time_step(report.data, fields, report.cells);
  if (!report.first_step || !report.data.has_steps()) return;
  if (*report.first_step <= smallest_step) {
    report.findings.error("time step", "the first time step is " + number(*report.first_step) +
                                           " s, expected more than 1e-8 s: see \"CFL\" and the "
                                           "smallest cells");
  }
}

/// Reports degrees, and slopes and a terrain that was forgotten, unless a bed file counts and not
/// the elevations of the nodes.
void check_ground(const CheckedCase& checked, Findings& findings) {
  const cases::Mesh& mesh = checked.contents.mesh;
  const bool has_bed = !checked.contents.fields.bed.empty();
  const auto point = [&](cases::Number node) {
    const std::size_t i = cases::at(node);
    return GroundPoint{mesh.x[i], mesh.y[i], has_bed ? 0.0 : mesh.z[i]};
  };
  GroundSurvey survey;
  for (cases::Number node = 0; node < mesh.n_nodes(); ++node) survey.add_node(point(node));
  for (cases::Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const std::span<const cases::Number> nodes = mesh.nodes_of(cell);
    survey.add_cell({point(nodes[0]), point(nodes[1]), point(nodes[2])});
  }
  for (const auto& [kind, text] : survey.remarks()) {
    if (!has_bed || kind != "flat ground") findings.warning(kind, text);
  }
}

void check_mesh(CaseReport& report, const CheckedCase& checked) {
  Findings& findings = report.findings;
  const cases::Mesh& mesh = checked.contents.mesh;
  const cases::CellFields& fields = checked.contents.fields;
  report.cells = cell_values(checked.contents);
  report.mesh = mesh_summary(mesh, report.cells);
  check_finite_geometry(checked, report.cells, findings);
  if (checked.has_edges) {
    check_orientation(mesh, findings);
    check_sides(mesh, findings);
    check_cracks(mesh, findings);
    report.regions = check_regions(mesh, report.cells, findings);
    report.higher_cell_first = check_shores(mesh, report.cells, report.data.zero_depth, findings);
  }
  check_quality(*report.mesh, report.cells, findings);
  check_ground(checked, findings);
  if (!fields.level.empty()) report.water = water_summary(report.data, report.cells);
  check_first_step(report, fields);
}

/// Reports water that the trial lost to depths below zero.
void check_trial(const TrialRun& trial, Findings& findings) {
  constexpr double much = 1e-3;
  if (!(trial.share_below_zero > much)) return;
  findings.warning("below zero", "after " + utils::counted(trial.steps, "step") + " (" +
                                     rounded(trial.simulated) + " s) of the measured run " +
                                     rounded(100.0 * trial.share_below_zero) +
                                     " % of the water is missing in cells whose depth is below "
                                     "zero, the deepest of them cell " +
                                     std::to_string(trial.deepest_cell));
}

CheckedCase parameters_of(const DataFile& data) {
  CheckedCase checked;
  checked.contents.has_sediments = data.has_sediments();
  checked.contents.zero_depth = data.zero_depth;
  return checked;
}

}  // namespace

std::string enter_case(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_directory(path, error)) return path;
  std::filesystem::current_path(path, error);
  if (error) throw Error("the folder " + path + " can't be entered: " + error.message());
  return "data.json";
}

CaseReport read_case(const std::string& path) {
  CaseReport report;
  report.path = path;
  const std::string data_file = enter_case(path);
  report.data = read_data_file(data_file, report.findings);
  CheckedCase checked = parameters_of(report.data);
  read_mesh(report.data, checked, report.findings);
  read_fields(report.data, checked, report.findings);
  if (report.findings.has_errors()) {
    std::string text = "the case can't be read";
    for (const Finding& finding : report.findings.in_order()) {
      if (finding.severity == Severity::error) text += "\n  " + finding.text;
    }
    throw Error(text);
  }
  report.cells = cell_values(checked.contents);
  report.mesh = mesh_summary(checked.contents.mesh, report.cells);
  report.water = water_summary(report.data, report.cells);
  return report;
}

CaseReport check_case(const std::string& path, bool with_trial) {
  CaseReport report;
  report.path = path;
  const std::string data_file = enter_case(path);
  if (with_trial) report.trial = trial_run(data_file);

  Findings& findings = report.findings;
  report.data = read_data_file(data_file, findings);
  const DataFile& data = report.data;
  CheckedCase checked = parameters_of(data);
  read_mesh(data, checked, findings);
  read_fields(data, checked, findings);
  read_rain(data, checked, findings);
  read_soils(data, checked, findings);

  const cases::Case& contents = checked.contents;
  const cases::CellFields& fields = contents.fields;
  if (checked.has_geometry()) check_mesh(report, checked);
  if (checked.is_whole()) {
    report.boundaries = check_boundaries(data, contents, report.cells, findings);
    check_scheme(data, checked, report.cells, findings);
  } else {
    check_series_files(contents, findings);
  }
  check_initial_state(fields, report.cells, findings);
  check_friction(data, fields, findings);
  check_rain(data, contents.rain, findings);
  check_soils(data, fields, contents.soils, findings);
  check_sediments(data, fields, findings);
  check_results(data_file, findings);
  check_output_folder(data, findings);
  check_envelope(data, report.first_step, findings);
  check_gauges(data, checked, report.cells, report.first_step, findings);
  check_sections(data, checked, report.first_step, findings);
  check_snapshots(data, findings);

  if (report.trial) check_trial(*report.trial, findings);
  if (report.trial && !report.trial->refusal.empty() && !findings.has_errors()) {
    findings.error("trial run", "the simulator gives up: " + report.trial->refusal);
  }
  return report;
}

}  // namespace tools::check
