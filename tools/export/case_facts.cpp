#include "export/case_facts.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <tuple>

#include "case/DataFileReader.hpp"
#include "case/EndAtFirstError.hpp"
#include "case/boundary_kinds.hpp"
#include "case/read_rain.hpp"
#include "case/read_series.hpp"
#include "case/reference.hpp"
#include "support/CaseNames.hpp"
#include "support/Error.hpp"
#include "utils/TextScanner.hpp"

namespace exports {

namespace {

using nlohmann::json;

std::string in_folder(const CaseFiles& files, const std::string& name) {
  return (std::filesystem::path(files.folder) / name).string();
}

json lowest_and_highest(const std::vector<double>& values) {
  const auto [lowest, highest] = std::minmax_element(values.begin(), values.end());
  return {*lowest, *highest};
}

json mesh_facts(const CaseResults& results, const Edges& edges) {
  const Mesh& mesh = results.mesh;
  double area = 0.0;
  std::size_t smallest = 0;
  for (std::size_t i = 0; i < mesh.n_cells(); ++i) {
    area += mesh.area_of(i);
    if (mesh.area_of(i) < mesh.area_of(smallest)) smallest = i;
  }
  const Extent extent = extent_of(mesh);
  return {{"cells", mesh.n_cells()},
          {"nodes", mesh.n_nodes()},
          {"edges", edges.nodes.size()},
          {"area", area},
          {"x", {extent.west, extent.east}},
          {"y", {extent.south, extent.north}},
          {"bed", lowest_and_highest(results.bed)},
          {"smallest_cell",
           {{"cell", smallest},
            {"area", mesh.area_of(smallest)},
            {"x", mesh.center_x[smallest]},
            {"y", mesh.center_y[smallest]}}}};
}

/// The range of Manning's coefficient, s/m^(1/3).
json friction_facts(const CaseResults& results, const utils::DataFileReader& data) {
  utils::TextScanner file(in_folder(results.files, data.get_friction_file()));
  std::vector<double> values(results.mesh.n_cells());
  for (double& value : values) value = file.read_number("Manning coefficient");
  return lowest_and_highest(values);
}

json rain_facts(const CaseFiles& files, const utils::DataFileReader& data) {
  cases::EndAtFirstError diagnostics;
  json rain = json::array();
  for (const cases::Hyetogram& hyetogram :
       cases::read_rain(in_folder(files, data.get_rainfall_file()), diagnostics)) {
    if (hyetogram.times.empty()) continue;  // no rain
    rain.push_back(
        {{"id", hyetogram.id}, {"times", hyetogram.times}, {"intensities", hyetogram.intensities}});
  }
  return rain;
}

json model_facts(const CaseResults& results) {
  const CaseFiles& files = results.files;
  const utils::DataFileReader data(files.data_file);
  json facts = {{"model", data.get_model_name()},
                {"scheme", data.get_flux_scheme_name()},
                {"t_start", data.get_start_time()},
                {"t_end", data.get_end_time()},
                {"cfl", data.get_CFL()},
                {"dry_depth", files.dry_depth},
                {"has_sediment", files.has_sediment},
                {"has_infiltration", files.has_infiltration}};
  if (files.epoch != cases::usual_epoch) facts["epoch"] = files.epoch;
  if (data.is_imposed_friction()) facts["friction"] = friction_facts(results, data);
  if (data.is_rainfall()) facts["rain"] = rain_facts(files, data);
  if (data.is_maxima()) facts["arrival_depth"] = data.get_arrival_depth();
  if (files.has_sediment) {
    facts["grain"] = data.get_sediments_mean_grain();
    facts["porosity"] = data.get_sediments_porosity();
  }
  return facts;
}

/// The names of the edges that have one.
std::map<int, std::string> names_of_edges(const tools::CaseNames& names) {
  std::map<int, std::string> of_edges;
  for (const auto& [name, edges] : names.boundaries) {
    for (const int edge : edges) of_edges[edge] = name;
  }
  return of_edges;
}

/// The boundaries of one kind and name, and the series that impose them.
class BoundaryFacts {
 public:
  BoundaryFacts(const CaseResults& results, const Edges& edges, const tools::CaseNames& names)
      : results_(results), edges_(edges), names_(names_of_edges(names)) {
    for (const BoundaryEdge& boundary : edges.boundary) add(boundary);
  }

  json boundaries() const {
    json listed = json::array();
    for (const auto& [key, boundary] : boundaries_) listed.push_back(boundary);
    return listed;
  }
  const json& series() const { return series_; }

 private:
  void add(const BoundaryEdge& boundary) {
    const auto named = names_.find(boundary.edge);
    const std::string name = named != names_.end() ? named->second : "";
    json& entry = boundaries_[{-boundary.code, name, name.empty() ? unnamed(boundary) : ""}];
    if (entry.is_null()) entry = describe(boundary.code, name);
    const auto& [node1, node2] = edges_.nodes[static_cast<std::size_t>(boundary.edge)];
    const json start = point(node1), end = point(node2);
    const double length = std::hypot(end[0].get<double>() - start[0].get<double>(),
                                     end[1].get<double>() - start[1].get<double>());
    entry["edges"] = entry["edges"].get<int>() + 1;
    entry["length"] = entry["length"].get<double>() + length;
    entry["lines"].push_back({start, end});
    add_part(boundary, length, entry["parts"]);
  }
  /// What tells boundaries of a kind apart that have no name: their series, or whether water
  /// enters.
  static std::string unnamed(const BoundaryEdge& boundary) {
    if (!boundary.series.empty()) return boundary.series;
    const cases::BoundaryKind* const kind = cases::boundary_kind(boundary.code);
    const bool enters = kind != nullptr && kind->imposes_discharge() && boundary.value < 0.0;
    return enters ? "in" : "";
  }
  static json describe(int code, const std::string& name) {
    const cases::BoundaryKind* const kind = cases::boundary_kind(code);
    const bool is_known = kind != nullptr;
    const char* const imposes = !is_known                   ? ""
                                : kind->imposes_discharge() ? "discharge"
                                : kind->imposes_level()     ? "level"
                                                            : "";
    return {{"kind", is_known ? kind->name : "code " + std::to_string(code)},
            {"meaning", is_known ? kind->meaning : ""},
            {"imposes", imposes},
            {"name", name},
            {"edges", 0},
            {"length", 0.0},
            {"lines", json::array()},
            {"parts", json::array()}};
  }
  /// Edges with the same value or series are one part, with their length together.
  void add_part(const BoundaryEdge& boundary, double length, json& parts) {
    const json imposed = boundary.series.empty() ? json(boundary.value) : json(boundary.series);
    if (!boundary.series.empty() && !series_.contains(boundary.series)) {
      const cases::Series series = cases::read_series(in_folder(results_.files, boundary.series));
      series_[boundary.series] = {{"times", series.times}, {"values", series.values}};
    }
    for (json& part : parts) {
      if (part["imposed"] != imposed) continue;
      part["length"] = part["length"].get<double>() + length;
      return;
    }
    parts.push_back({{"imposed", imposed}, {"length", length}});
  }
  json point(int node) const {
    const auto n = static_cast<std::size_t>(node);
    return {results_.mesh.x[n], results_.mesh.y[n]};
  }

  const CaseResults& results_;
  const Edges& edges_;
  std::map<int, std::string> names_;
  std::map<std::tuple<int, std::string, std::string>, json> boundaries_;
  json series_ = json::object();  // by their files
};

}  // namespace

json case_facts(const CaseResults& results) {
  const CaseFiles& files = results.files;
  const Edges edges = read_edges(files.edges, results.mesh);
  const tools::CaseNames names = tools::read_case_names(files.folder);
  const BoundaryFacts boundaries(results, edges, names);
  json facts = {{"name", files.title},
                {"data_file", std::filesystem::path(files.data_file).filename().string()},
                {"mesh", mesh_facts(results, edges)},
                {"model", model_facts(results)},
                {"boundaries", boundaries.boundaries()},
                {"series", boundaries.series()},
                {"gauge_names", names.gauges},
                {"section_names", names.sections}};
  return facts;
}

}  // namespace exports
