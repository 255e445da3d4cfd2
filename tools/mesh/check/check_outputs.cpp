#include "mesh/check/check_outputs.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <set>

#include "case/keys.hpp"
#include "case/planned_files.hpp"
#include "case/plausibility.hpp"
#include "case/read_requests.hpp"
#include "case/recorded_end.hpp"
#include "mesh/check/checked_file.hpp"
#include "mesh/check/numbers.hpp"
#include "physics/cell_geometry.hpp"

namespace tools::check {

namespace {

using cases::key;
namespace fs = std::filesystem;

/// Whether a file can be created, or overwritten.
bool can_be_written(const std::string& name) {
  std::error_code ignored;
  if (fs::is_directory(name, ignored)) return false;
  if (fs::exists(name, ignored)) return access(name.c_str(), W_OK) == 0;
  const fs::path folder = fs::path(name).parent_path();
  return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0;
}

/// Whether a file lies neither in the working directory nor below.
bool is_outside(const std::string& name) {
  std::error_code ignored;
  const fs::path folder = fs::weakly_canonical(fs::current_path(ignored), ignored);
  const fs::path file = fs::weakly_canonical(folder / name, ignored);
  return *file.lexically_relative(folder).begin() == "..";
}

/// Whether each point lies in a cell.
std::vector<bool> points_in_cells(const cases::Mesh& mesh,
                                  const std::vector<physics::PlanPoint>& points) {
  std::vector<bool> found(points.size(), false);
  for (cases::Number c = 0; c < mesh.n_cells(); ++c) {
    const std::span<const cases::Number> nodes = mesh.nodes_of(c);
    const auto node_at = [&](int i) { return mesh.plan_node(nodes[cases::at(i)]); };
    const int n = static_cast<int>(nodes.size());
    const physics::SpacePoint center = mesh.center_of(c);
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (found[i]) continue;
      found[i] = physics::cell_contains(n, {center.x, center.y}, node_at, points[i]);
    }
  }
  return found;
}

std::string nearest_cell(const std::vector<CellValues>& cells, const physics::PlanPoint& p) {
  double nearest = std::numeric_limits<double>::infinity();
  std::size_t found = 0;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const double distance = std::hypot(cells[i].center.x - p.x, cells[i].center.y - p.y);
    if (distance >= nearest) continue;
    nearest = distance;
    found = i;
  }
  return "the centre of the nearest, cell " + std::to_string(found) + ", is " + number(nearest) +
         " m away";
}

/// A step is about as long as the first one, which is known where mesh and fields are.
void check_recorded_end(const std::string& interval, double seconds, const DataFile& data,
                        const std::optional<double>& first_step, Findings& findings) {
  if (!data.has_steps()) return;
  findings.add_remark(
      "end not recorded",
      cases::on_recorded_end(interval, seconds, {*data.t0, *data.tend, first_step.value_or(0.0)}));
}

/// An interval that is refused is NaN.
void check_interval(const std::string& name, double interval, const DataFile& data,
                    const std::optional<double>& first_step, Findings& findings) {
  if (std::isnan(interval)) return;
  const std::string what = name + ": the recording interval";
  findings.add_remark("recording interval", plausibility::on_interval(what, interval));
  check_recorded_end(what, interval, data, first_step, findings);
}

/// Whether the normals of a section's edges, of which neighbours share a node, lie on one side: on
/// the way along the section all edges are walked in the same direction.
bool is_consistent(const cases::Mesh& mesh, const std::vector<cases::Number>& section) {
  for (std::size_t i = 1; i < section.size(); ++i) {
    const std::size_t a = cases::at(section[i - 1]), b = cases::at(section[i]);
    if (mesh.node1[a] == mesh.node1[b] || mesh.node2[a] == mesh.node2[b]) return false;
  }
  return true;
}

/// Whether all edges of a section were read.
bool is_complete(const std::vector<cases::Number>& section) {
  return std::find(section.begin(), section.end(), -1) == section.end();
}

/// Of the times of snapshots in the file under a key. Results in NetCDF need times that increase.
void check_times(const DataFile& data, const cases::Key& times_key, bool must_increase,
                 Findings& findings) {
  const std::string* const file_name = data.files.find(times_key);
  if (file_name == nullptr) return;
  CheckedFile file(*file_name, times_key.path, findings);
  const std::vector<double> times = cases::read_snapshots(file).times;
  double before = -std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < times.size() && !std::isnan(times[i]); ++i) {
    const double time = times[i];
    const std::string name = "snapshot " + std::to_string(i) + " at " + number(time) + " s ";
    const bool increases = time > before;
    before = time;
    if (!increases && must_increase) {
      findings.error("snapshot", *file_name + ": " + name +
                                     "does not come after the one before, as results in NetCDF "
                                     "need");
      return;
    }
    if (!data.has_steps()) continue;
    if (!increases) {
      findings.warning("snapshot", name + "does not come after the one before: it is late");
    }
    if (time >= *data.tend) {
      findings.warning("snapshot", name + "is not written: the run ends at " + number(*data.tend) +
                                       " s, before the first step that reaches it");
    } else if (time < *data.t0) {
      findings.warning("snapshot", name + "lies before the run (" + number(*data.t0) +
                                       " s): it shows a later state");
    }
  }
}

}  // namespace

void check_envelope(const DataFile& data, const std::optional<double>& first_step,
                    Findings& findings) {
  if (!data.envelope_interval) return;
  check_recorded_end('"' + std::string(key("output/time step enveloppe of results").path) + '"',
                     *data.envelope_interval, data, first_step, findings);
}

void check_gauges(const DataFile& data, const CheckedCase& checked,
                  const std::vector<CellValues>& cells, const std::optional<double>& first_step,
                  Findings& findings) {
  const std::string* const name = data.files.find(key("output/gauges"));
  if (name == nullptr) return;
  CheckedFile file(*name, key("output/gauges").path, findings);
  const cases::GaugeRequest gauges = cases::read_gauges(file);
  check_interval(*name, gauges.interval, data, first_step, findings);
  if (!file.is_well()) return;
  if (data.folder && data.has_steps() && !can_be_written(*data.folder + gauges.result)) {
    findings.error("output", "the gauges' result file " + *data.folder + gauges.result +
                                 " can't be created: the run stops at its first step");
  }
  if (cells.empty()) return;
  const std::vector<bool> found = points_in_cells(checked.contents.mesh, gauges.points);
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (found[i]) continue;
    const physics::PlanPoint& p = gauges.points[i];
    findings.warning("gauge in no cell",
                     "gauge " + std::to_string(i) + " at " + point(p.x, p.y) +
                         " lies in no cell, or on an edge, and records nothing; " +
                         nearest_cell(cells, p));
  }
}

void check_sections(const DataFile& data, const CheckedCase& checked,
                    const std::optional<double>& first_step, Findings& findings) {
  const std::string* const name = data.files.find(key("output/discharges"));
  if (name == nullptr) return;
  const cases::Mesh& mesh = checked.contents.mesh;
  const int limit = checked.has_edges ? mesh.n_edges() : std::numeric_limits<int>::max();
  CheckedFile file(*name, key("output/discharges").path, findings);
  const cases::SectionRequest request = cases::read_sections(file, limit);
  check_interval(*name, request.interval, data, first_step, findings);
  for (std::size_t s = 0; s < request.sections.size() && checked.has_edges; ++s) {
    const std::vector<cases::Number>& section = request.sections[s];
    if (!is_complete(section) || is_consistent(mesh, section)) continue;
    findings.warning("section", "section " + std::to_string(s) +
                                    " has neighbouring edges whose normals lie on different "
                                    "sides: their discharges cancel");
  }
  if (file.is_well() && !can_be_written(request.result)) {
    findings.warning("output", "the sections' result file " + request.result + " can't be created");
  }
}

void check_snapshots(const DataFile& data, Findings& findings) {
  const cases::Key& of_results = key("output/results times");
  const bool results_have_times = data.files.find(of_results) != nullptr;
  check_times(data, key("output/snapshots of flow"), data.results && !results_have_times, findings);
  if (!data.results) return;
  check_times(data, of_results, true, findings);
  if (data.results->empty()) return;  // which has been said
  if (!data.folder || can_be_written(*data.folder + *data.results)) return;
  findings.error("output", "the results " + *data.folder + *data.results +
                               " can't be created: the run does not begin");
}

void check_results(const std::string& data_file, Findings& findings) {
  const cases::PlannedFiles files = cases::plan_files(data_file);
  for (const std::string& conflict : cases::conflicts_of(files)) {
    findings.error("results", conflict);
  }
  std::set<std::string> seen;  // kinds of results: all snapshots lie in one folder
  for (const cases::PlannedResult& result : files.results) {
    if (!seen.insert(result.what).second || !is_outside(result.name)) continue;
    findings.warning("results outside", result.what + " (" + result.name +
                                            ") will be written outside the folder of the case");
  }
}

void check_output_folder(const DataFile& data, Findings& findings) {
  if (!data.folder) return;
  const fs::path folder = fs::path(*data.folder).parent_path();
  std::error_code ignored;
  if (!folder.empty() && !fs::is_directory(folder, ignored)) {
    findings.warning(
        "output", "the output folder " + folder.string() + " does not exist: results will be lost");
  }
  if (!data.folder->empty() && data.folder->back() != '/') {
    findings.warning("output", "\"output/folder\" is \"" + *data.folder +
                                   "\": it does not end with /, so it becomes the beginning of "
                                   "result names");
  }
}

}  // namespace tools::check
