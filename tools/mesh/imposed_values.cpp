#include "mesh/imposed_values.hpp"

#include <filesystem>
#include <map>
#include <string>

#include "mesh/numbers.hpp"

namespace mesh_import {

namespace {

namespace fs = std::filesystem;

/// The series of the edges of a boundary: its own, or, of a total discharge, one for every share.
class EdgeSeries {
 public:
  EdgeSeries(const Boundary& boundary, std::vector<cases::Series>& list)
      : boundary_(boundary), list_(list) {}

  /// Index of the series of an edge with a share, 1/m; -1 for a boundary without a series.
  int of(double share) {
    if (boundary_.series.file.empty()) return -1;
    if (!boundary_.is_total) share = 1.0;
    const auto [place, is_new] = of_share_.try_emplace(share, static_cast<int>(list_.size()));
    if (!is_new) return place->second;
    cases::Series series{file_name(), all_as_written(boundary_.series.times),
                         all_as_written(boundary_.series.values)};
    for (double& value : series.values) value *= share;
    list_.push_back(series);
    return place->second;
  }

 private:
  /// "boundary_inflow.txt", "boundary_inflow.2.txt", ...: no other boundary's has such a name.
  std::string file_name() const {
    const fs::path file = boundary_.series.file;
    if (of_share_.size() == 1) return file.string();
    return file.stem().string() + "." + std::to_string(of_share_.size()) +
           file.extension().string();
  }

  const Boundary& boundary_;
  std::vector<cases::Series>& list_;
  std::map<double, int> of_share_;
};

}  // namespace

void impose(const Boundaries& boundaries, cases::Case& contents) {
  std::vector<EdgeSeries> series_of;
  for (const Boundary& boundary : boundaries.list)
    series_of.emplace_back(boundary, contents.series);
  for (cases::Number edge = 0; edge < contents.mesh.n_edges(); ++edge) {
    const int index = boundaries.of_edge[cases::at(edge)];
    if (index < 0) continue;
    const Boundary& boundary = boundaries.list[cases::at(index)];
    const double share = boundaries.share_of_edge[cases::at(edge)];
    double value = boundary.kind->has_value() ? as_written(boundary.value) : 0.0;
    if (boundary.is_total) value *= share;
    contents.mesh.boundaries.push_back(
        {edge, boundary.kind->code, value, series_of[cases::at(index)].of(share)});
  }
}

}  // namespace mesh_import
