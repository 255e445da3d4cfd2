#include "mesh/check/check_outputs.hpp"

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <set>

#include "case/plausibility.hpp"
#include "mesh/check/checked_file.hpp"
#include "mesh/check/numbers.hpp"
#include "physics/cell_geometry.hpp"
#include "utils/known_keys.hpp"
#include "utils/planned_files.hpp"

namespace tools::check {

namespace {

namespace fs = std::filesystem;
namespace key = utils::key;
namespace section = utils::section;
using utils::path_of;
using utils::TextScanner;

struct Point {
  double x, y;
};

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
std::vector<bool> points_in_cells(const CaseMesh& mesh, const std::vector<Point>& points) {
  std::vector<bool> found(points.size(), false);
  for (int c = 0; c < mesh.n_cells(); ++c) {
    const std::vector<const MeshNode*> corners = mesh.corners(c);
    const int n = static_cast<int>(corners.size());
    const auto node_at = [&](int i) {
      const MeshNode& node = *corners[static_cast<std::size_t>(i)];
      return physics::SpacePoint{node.x, node.y, node.z};
    };
    const auto plan_node_at = [&](int i) { return physics::PlanPoint{node_at(i).x, node_at(i).y}; };
    const physics::SpacePoint center = physics::cell_center(n, node_at);
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (found[i]) continue;
      found[i] =
          physics::cell_contains(n, {center.x, center.y}, plan_node_at, {points[i].x, points[i].y});
    }
  }
  return found;
}

std::string nearest_cell(const std::vector<CellValues>& cells, const Point& p) {
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

void check_interval(CheckedFile& file, const std::string& name, Findings& findings) {
  const int before = file.refusals();
  const double interval = file.number("recording interval");
  if (file.refusals() != before || !file.is_open()) return;
  findings.add_remark("recording interval",
                      plausibility::on_interval(name + ": the recording interval", interval));
}

/// Reads a section; empty if one of its edges is refused.
std::vector<int> read_section(CheckedFile& file, int edge_limit) {
  const int before = file.refusals();
  const int count = file.take_or_give_up(
      0, [](TextScanner& text) { return text.read_count("number of edges", 1); });
  std::vector<int> edges;
  for (int i = 0; i < count && file.is_open(); ++i) {
    edges.push_back(
        file.take(0, [&](TextScanner& text) { return text.read_index("edge", edge_limit); }));
  }
  if (file.refusals() != before) edges.clear();
  return edges;
}

/// Whether the normals of a section's edges, of which neighbours share a node, lie on one side: on
/// the way along the section all edges are walked in the same direction.
bool is_consistent(const CaseMesh& mesh, const std::vector<int>& section) {
  for (std::size_t i = 1; i < section.size(); ++i) {
    const CaseEdge& a = mesh.edges[static_cast<std::size_t>(section[i - 1])];
    const CaseEdge& b = mesh.edges[static_cast<std::size_t>(section[i])];
    if (a.node1 == b.node1 || a.node2 == b.node2) return false;
  }
  return true;
}

}  // namespace

void check_gauges(const DataFile& data, const CaseMesh& mesh, const std::vector<CellValues>& cells,
                  Findings& findings) {
  if (!data.gauges) return;
  CheckedFile file(*data.gauges, path_of(section::output, key::gauges), findings);
  const int count = file.take_or_give_up(
      0, [](TextScanner& text) { return text.read_count("number of gauges", 3); });
  const std::string result = file.take(
      std::string(), [](TextScanner& text) { return text.read_word("result file name"); });
  check_interval(file, *data.gauges, findings);
  std::vector<Point> points;
  for (int i = 0; i < count && file.is_open(); ++i) {
    file.begin_record("gauge", i, count);
    const double x = file.number("x");
    const double y = file.number("y");
    file.number("z");
    points.push_back({x, y});
  }
  if (!file.is_well()) return;
  if (data.folder && data.has_steps() && !can_be_written(*data.folder + result)) {
    findings.error("output", "the gauges' result file " + *data.folder + result +
                                 " can't be created: the run stops at its first step");
  }
  if (cells.empty()) return;
  const std::vector<bool> found = points_in_cells(mesh, points);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (found[i]) continue;
    findings.warning("gauge in no cell",
                     "gauge " + std::to_string(i) + " at " + point(points[i].x, points[i].y) +
                         " lies in no cell, or on an edge, and records nothing; " +
                         nearest_cell(cells, points[i]));
  }
}

void check_sections(const DataFile& data, const CaseMesh& mesh, Findings& findings) {
  if (!data.discharges) return;
  const int limit = mesh.has_edges ? mesh.n_edges() : std::numeric_limits<int>::max();
  CheckedFile file(*data.discharges, path_of(section::output, key::discharges), findings);
  const int count = file.take_or_give_up(
      0, [](TextScanner& text) { return text.read_count("number of sections", 1); });
  check_interval(file, *data.discharges, findings);
  const std::string result = file.take(
      std::string(), [](TextScanner& text) { return text.read_word("result file name"); });
  for (int s = 0; s < count && file.is_open(); ++s) {
    file.begin_record("section", s, count);
    const std::vector<int> section = read_section(file, limit);
    if (mesh.has_edges && !is_consistent(mesh, section)) {
      findings.warning("section", "section " + std::to_string(s) +
                                      " has neighbouring edges whose normals lie on different "
                                      "sides: their discharges cancel");
    }
  }
  if (file.is_well() && !can_be_written(result)) {
    findings.warning("output", "the sections' result file " + result + " can't be created");
  }
}

void check_snapshots(const DataFile& data, Findings& findings) {
  if (!data.pictures) return;
  CheckedFile file(*data.pictures, path_of(section::output, key::pictures), findings);
  const int count = file.take_or_give_up(
      0, [](TextScanner& text) { return text.read_count("number of snapshots", 1); });
  double before = -std::numeric_limits<double>::infinity();
  for (int i = 0; i < count && file.is_open(); ++i) {
    file.begin_record("snapshot", i, count);
    const double time = file.number("time");
    if (!file.is_well() || !data.has_steps()) continue;
    const std::string name = "snapshot " + std::to_string(i) + " at " + number(time) + " s ";
    if (!(time > before)) {
      findings.warning("snapshot", name + "does not come after the one before: it is late");
    }
    if (time >= *data.tend) {
      findings.warning("snapshot", name + "is not written: the run ends at " + number(*data.tend) +
                                       " s, before the first step that reaches it");
    } else if (time < *data.t0) {
      findings.warning("snapshot", name + "lies before the run (" + number(*data.t0) +
                                       " s): it shows a later state");
    }
    before = time;
  }
}

void check_results(const std::string& data_file, Findings& findings) {
  const utils::PlannedFiles files = utils::plan_files(data_file);
  for (const std::string& conflict : utils::conflicts_of(files)) {
    findings.error("results", conflict);
  }
  std::set<std::string> seen;  // kinds of results: all snapshots lie in one folder
  for (const utils::PlannedResult& result : files.results) {
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
