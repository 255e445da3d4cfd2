#include "mesh/check/case_report.hpp"

#include <filesystem>

#include "mesh/check/case_fields.hpp"
#include "mesh/check/case_mesh.hpp"
#include "mesh/check/check_outputs.hpp"
#include "mesh/check/check_topology.hpp"
#include "mesh/check/check_values.hpp"
#include "mesh/check/numbers.hpp"
#include "support/Error.hpp"
#include "utils/stop.hpp"

namespace tools::check {

namespace {

void check_first_step(CaseReport& report, const CaseFields& fields) {
  constexpr double smallest_step = 1e-8;  // s; the simulator stops at it
  report.first_step = first_time_step(report.data, fields, report.cells);
  if (!report.first_step || !report.data.has_steps()) return;
  if (*report.first_step <= smallest_step) {
    report.findings.error("time step", "the first time step is " + number(*report.first_step) +
                                           " s, expected more than 1e-8 s: see \"CFL\" and the "
                                           "smallest cells");
  }
}

void check_mesh(CaseReport& report, const CaseMesh& mesh, const CaseFields& fields) {
  Findings& findings = report.findings;
  report.cells = cell_values(report.data, mesh, fields);
  report.mesh = mesh_summary(mesh, report.cells);
  check_finite_geometry(mesh, report.cells, findings);
  if (mesh.has_edges) {
    check_orientation(mesh, report.cells, findings);
    check_sides(mesh, findings);
    report.regions = check_regions(mesh, report.cells, findings);
    report.higher_cell_first = check_shores(report.data, mesh, report.cells, findings);
  }
  check_quality(*report.mesh, report.cells, findings);
  if (!fields.level.empty()) report.water = water_summary(report.data, report.cells);
  check_first_step(report, fields);
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
  const CaseMesh mesh = read_mesh(report.data, report.findings);
  const int n_cells = mesh.has_cells ? mesh.n_cells() : -1;
  const CaseFields fields = read_fields(report.data, n_cells, report.findings);
  if (report.findings.has_errors()) {
    std::string text = "the case can't be read";
    for (const Finding& finding : report.findings.in_order()) {
      if (finding.severity == Severity::error) text += "\n  " + finding.text;
    }
    throw Error(text);
  }
  report.cells = cell_values(report.data, mesh, fields);
  report.mesh = mesh_summary(mesh, report.cells);
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
  const CaseMesh mesh = read_mesh(data, findings);
  const int n_cells = mesh.has_cells ? mesh.n_cells() : -1;
  const CaseFields fields = read_fields(data, n_cells, findings);
  const std::vector<Hyetogram> rain = read_rain(data, n_cells, findings);
  const std::vector<Soil> soils = read_soils(data, n_cells, findings);

  if (mesh.has_geometry()) check_mesh(report, mesh, fields);
  if (mesh.is_whole()) {
    report.boundaries = check_boundaries(data, mesh, report.cells, findings);
  } else {
    check_series_files(mesh, findings);
  }
  check_initial_state(fields, report.cells, findings);
  check_friction(data, fields, findings);
  check_rain(data, rain, findings);
  check_soils(data, fields, soils, findings);
  check_sediments(data, fields, findings);
  check_results(data_file, findings);
  check_output_folder(data, findings);
  check_gauges(data, mesh, report.cells, findings);
  check_sections(data, mesh, findings);
  check_snapshots(data, findings);

  if (report.trial && !report.trial->refusal.empty() && !findings.has_errors()) {
    findings.error("trial run", "the simulator gives up: " + report.trial->refusal);
  }
  return report;
}

}  // namespace tools::check
