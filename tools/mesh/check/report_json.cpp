#include "mesh/check/report_json.hpp"

namespace tools::check {

namespace {

using json = nlohmann::ordered_json;

json or_null(const std::optional<double>& value) { return value ? json(*value) : json(); }

json findings_json(const Findings& findings, Severity severity) {
  json list = json::array();
  for (const Finding& finding : findings.in_order()) {
    if (finding.severity != severity) continue;
    list.push_back({{"kind", finding.kind}, {"text", finding.text}});
  }
  return list;
}

json mesh_json(const MeshSummary& mesh) {
  return {{"nodes", mesh.nodes},
          {"cells", mesh.cells},
          {"edges", mesh.edges},
          {"extent",
           {{"x", {mesh.x_min, mesh.x_max}},
            {"y", {mesh.y_min, mesh.y_max}},
            {"z", {mesh.z_min, mesh.z_max}}}},
          {"area", mesh.area}};
}

json quality_json(const CaseReport& report) {
  const MeshSummary& mesh = *report.mesh;
  json smallest = json::array();
  for (const int c : mesh.smallest_cells) {
    const CellValues& cell = report.cells[static_cast<std::size_t>(c)];
    smallest.push_back(
        {{"cell", c},
         {"x", cell.center.x},
         {"y", cell.center.y},
         {"area", cell.area},
         {"length", cell.char_length},
         {"depth", cell.depth},
         {"stable step", cell.depth > report.data.zero_depth ? json(cell.step) : json()}});
  }
  return {{"smallest angle", mesh.smallest_angle},
          {"sharpest cell", mesh.sharpest_cell},
          {"parts", report.regions},
          {"edges with the higher cell first", report.higher_cell_first},
          {"smallest cells", smallest}};
}

json boundaries_json(const std::vector<Boundary>& boundaries) {
  json list = json::array();
  for (const Boundary& boundary : boundaries) {
    json entry = {{"name", boundary.name.empty() ? json() : json(boundary.name)},
                  {"kind", boundary.kind->name},
                  {"code", boundary.kind->code},
                  {"edges", boundary.edges},
                  {"length", boundary.length},
                  {"series", boundary.series.empty() ? json() : json(boundary.series)},
                  {"first value", boundary.has_value ? json(boundary.first_value) : json()}};
    const bool has_discharge = boundary.has_value && boundary.kind->imposes_discharge();
    entry["discharge"] = has_discharge ? json(boundary.discharge()) : json();
    list.push_back(entry);
  }
  return list;
}

json water_json(const WaterSummary& water) {
  return {{"volume", water.volume},
          {"area", water.area},
          {"wet cells", water.wet_cells},
          {"largest depth", water.largest_depth},
          {"deepest cell", water.deepest_cell}};
}

json trial_json(const CaseReport& report) {
  if (!report.trial || !report.trial->is_timed() || !report.data.has_steps()) return json();
  const TrialRun& trial = *report.trial;
  const double duration = *report.data.tend - *report.data.t0;
  return {{"expected wall time", trial.expected_seconds(duration)},
          {"expected steps", trial.expected_steps(duration)},
          {"memory", trial.memory_bytes},
          {"set-up time", trial.setup_seconds},
          {"steps taken", trial.steps},
          {"simulated time", trial.simulated},
          {"time per step", trial.seconds_per_step()}};
}

}  // namespace

json check_json(const CaseReport& report) {
  const Findings& findings = report.findings;
  json document = {{"case", report.path},
                   {"accepted", !findings.has_errors()},
                   {"error count", findings.count(Severity::error)},
                   {"warning count", findings.count(Severity::warning)},
                   {"errors", findings_json(findings, Severity::error)},
                   {"warnings", findings_json(findings, Severity::warning)}};
  document["mesh"] = report.mesh ? mesh_json(*report.mesh) : json();
  document["quality"] = report.mesh ? quality_json(report) : json();
  document["boundaries"] = boundaries_json(report.boundaries);
  document["water"] = report.water ? water_json(*report.water) : json();
  document["start"] = or_null(report.data.t0);
  document["end"] = or_null(report.data.tend);
  document["first time step"] = or_null(report.first_step);
  document["measurement"] = trial_json(report);
  return document;
}

json info_json(const CaseReport& report) {
  json document = {{"case", report.path}, {"name", report.data.name.value_or("")}};
  document["mesh"] = mesh_json(*report.mesh);
  document["water"] = report.water ? water_json(*report.water) : json();
  return document;
}

}  // namespace tools::check
