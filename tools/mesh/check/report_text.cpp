#include "mesh/check/report_text.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "mesh/check/numbers.hpp"
#include "mesh/check/text_table.hpp"
#include "utils/counted.hpp"

namespace tools::check {

namespace {

std::string range(double low, double high) { return coordinate(low) + " to " + coordinate(high); }

/// Whether the data file differs from its schema in what can be told while it is typed.
bool has_slips_of_keys(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.kind == unknown_key || finding.kind == wrong_type;
  });
}

void write_findings(std::ostream& out, const Findings& findings) {
  const long errors = findings.count(Severity::error);
  const long warnings = findings.count(Severity::warning);
  out << (errors > 0 ? "The simulator refuses this case: " : "The simulator accepts this case: ")
      << utils::counted(errors, "error") << ", " << utils::counted(warnings, "warning") << ".\n";
  const std::vector<Finding> in_order = findings.in_order();
  for (const Finding& finding : in_order) {
    out << (finding.severity == Severity::error ? "Error: " : "Warning: ") << finding.text
        << (finding.text.back() == '?' ? "\n" : ".\n");
  }
  if (has_slips_of_keys(in_order)) {
    out << "Hint: editors tell such slips as you type, by the schema that \"quillmere --schema\" "
           "prints.\n";
  }
}

void write_mesh(std::ostream& out, const CaseReport& report) {
  const MeshSummary& mesh = *report.mesh;
  out << "\nMesh\n"
      << "  " << utils::counted(mesh.nodes, "node") << ", " << utils::counted(mesh.cells, "cell")
      << ", " << utils::counted(mesh.edges, "edge") << "\n"
      << "  x " << range(mesh.x_min, mesh.x_max) << " m, y " << range(mesh.y_min, mesh.y_max)
      << " m, z " << range(mesh.z_min, mesh.z_max) << " m\n"
      << "  area " << number(mesh.area) << " m2\n";
}

void write_quality(std::ostream& out, const CaseReport& report) {
  const MeshSummary& mesh = *report.mesh;
  if (mesh.sharpest_cell < 0) return;
  out << "  smallest angle " << number(mesh.smallest_angle) << " degrees, in cell "
      << mesh.sharpest_cell << "\n";
  if (!report.regions.empty()) {
    out << "  " << utils::counted(static_cast<long>(report.regions.size()), "connected part")
        << "\n"
        << "  " << utils::counted(report.higher_cell_first, "interior edge")
        << " with the higher cell first (on a shore, water at rest needs the lower one there)\n";
  }
  out << "\nSmallest cells: they set the time step\n";
  std::vector<std::vector<std::string>> rows = {
      {"cell", "centre", "area [m2]", "length [m]", "depth [m]", "stable step [s]"}};
  for (const int c : mesh.smallest_cells) {
    const CellValues& cell = report.cells[static_cast<std::size_t>(c)];
    rows.push_back({std::to_string(c), point(cell.center.x, cell.center.y), number(cell.area),
                    number(cell.char_length), number(cell.depth),
                    cell.depth > report.data.zero_depth ? number(cell.step) : "-"});
  }
  write_table(out, rows);
}

void write_boundaries(std::ostream& out, const std::vector<Boundary>& boundaries) {
  if (boundaries.empty()) return;
  out << "\nBoundaries\n";
  std::vector<std::vector<std::string>> rows = {
      {"kind", "series", "edges", "length [m]", "first value", "discharge [m3/s]"}};
  for (const Boundary& boundary : boundaries) {
    const std::string unit = boundary.kind->imposes_level() ? " m" : " m2/s";
    rows.push_back({boundary.kind->name, boundary.series.empty() ? "-" : boundary.series,
                    std::to_string(boundary.edges), number(boundary.length),
                    boundary.has_value ? number(boundary.first_value) + unit : "-",
                    boundary.has_value && boundary.kind->imposes_discharge()
                        ? number(boundary.discharge())
                        : "-"});
  }
  const bool has_names =
      std::any_of(boundaries.begin(), boundaries.end(),
                  [](const Boundary& boundary) { return !boundary.name.empty(); });
  for (std::size_t i = 0; i < rows.size() && has_names; ++i) {
    const std::string name = i == 0 ? "name" : boundaries[i - 1].name;
    rows[i].insert(rows[i].begin(), name.empty() ? "-" : name);
  }
  write_table(out, rows);
}

void write_water(std::ostream& out, const WaterSummary& water) {
  out << "\nWater at the start\n"
      << "  volume " << number(water.volume) << " m3 in "
      << utils::counted(water.wet_cells, "wet cell") << ", area " << number(water.area) << " m2\n";
  if (water.deepest_cell < 0) return;
  out << "  largest depth " << number(water.largest_depth) << " m, in cell " << water.deepest_cell
      << "\n";
}

void write_run(std::ostream& out, const CaseReport& report) {
  if (!report.first_step && !(report.trial && report.trial->is_timed())) return;
  out << "\nRun\n";
  if (report.data.has_steps()) {
    out << "  from " << number(*report.data.t0) << " s to " << number(*report.data.tend) << " s\n";
  }
  if (report.first_step) out << "  first time step " << number(*report.first_step) << " s\n";
  if (!report.trial || !report.trial->is_timed() || !report.data.has_steps()) return;
  const TrialRun& trial = *report.trial;
  const double duration = *report.data.tend - *report.data.t0;
  constexpr double bytes_per_mib = 1024.0 * 1024.0;
  const double steps = trial.expected_steps(duration);
  out << "  memory " << rounded(trial.memory_bytes / bytes_per_mib) << " MiB\n"
      << "  wall time about " << rounded(trial.expected_seconds(duration)) << " s for about "
      << utils::counted(std::lround(steps), "step")
      << (trial.is_complete ? "" : ", if it goes on as it began")
      << "\n  measured here and now, without outputs: set-up " << rounded(trial.setup_seconds)
      << " s, then " << utils::counted(trial.steps, "step") << " (" << rounded(trial.simulated)
      << " s of the run), " << rounded(1e3 * trial.seconds_per_step()) << " ms each\n";
}

}  // namespace

void write_check_text(std::ostream& out, const CaseReport& report) {
  write_findings(out, report.findings);
  if (report.mesh) {
    write_mesh(out, report);
    write_quality(out, report);
  }
  write_boundaries(out, report.boundaries);
  if (report.water) write_water(out, *report.water);
  write_run(out, report);
}

void write_info_text(std::ostream& out, const CaseReport& report) {
  out << report.data.name.value_or("") << "\n";
  write_mesh(out, report);
  if (report.water) write_water(out, *report.water);
}

}  // namespace tools::check
