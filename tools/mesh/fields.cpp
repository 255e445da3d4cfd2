#include "mesh/fields.hpp"

#include <algorithm>
#include <filesystem>

#include "mesh/extent.hpp"
#include "mesh/numbers.hpp"
#include "support/Error.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

struct Request {
  std::string text;
  int surface = -1;  // negative: all cells
  std::optional<double> value;
  std::optional<Raster> raster;
};

/// What a request gives: a number, or else a raster.
void read_source(Request& request, const std::string& option, const std::string& source,
                 std::optional<int> epsg) {
  request.value = utils::parse_finite_number(source);
  if (request.value) return;
  if (!std::filesystem::is_regular_file(source)) {
    throw tools::Error(option + " " + request.text + ": found \"" + source +
                       "\", expected a number or the file of a raster.");
  }
  request.raster.emplace(source, epsg);
}

Request parse_request(const Mesh& mesh, const std::string& option, const std::string& text) {
  Request request;
  request.text = text;
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) {
    read_source(request, option, text, mesh.epsg);
    return request;
  }
  const std::string name = text.substr(0, equals);
  const auto& names = mesh.surface_names;
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    throw tools::Error(option + " " + text + ": the mesh has no surface \"" + name +
                       "\"; it has: " + list_of_names(names) + ".");
  }
  request.surface = static_cast<int>(found - names.begin());
  read_source(request, option, text.substr(equals + 1), mesh.epsg);
  return request;
}

std::string name_of_zone(const Mesh& mesh, const std::vector<int>& zone) {
  if (zone.empty()) return "no named surface";
  return "surface \"" + mesh.surface_names[static_cast<std::size_t>(zone.front())] + "\"";
}

}  // namespace

std::string list_of_names(const std::vector<std::string>& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ", ") + name;
  return list.empty() ? "none" : list;
}

std::vector<std::optional<double>> values_of_cells(const Mesh& mesh, const std::string& option,
                                                   const std::vector<std::string>& requests,
                                                   RasterUse use) {
  std::vector<Request> parsed;
  for (const auto& text : requests) parsed.push_back(parse_request(mesh, option, text));
  std::stable_partition(parsed.begin(), parsed.end(),
                        [](const Request& request) { return request.surface < 0; });
  std::vector<std::optional<double>> values(mesh.cells.size());
  for (const Request& request : parsed) {
    std::vector<bool> is_meant;  // whether the request holds for a zone
    for (const auto& zone : mesh.zones) {
      is_meant.push_back(request.surface < 0 ||
                         std::binary_search(zone.begin(), zone.end(), request.surface));
    }
    bool is_used = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!is_meant[static_cast<std::size_t>(mesh.zone_of_cell[i])]) continue;
      is_used = true;
      if (request.value) {
        values[i] = request.value;
        continue;
      }
      const auto value = use == RasterUse::mean
                             ? request.raster->mean(mesh, mesh.cells[i])
                             : request.raster->most_frequent(mesh, mesh.cells[i]);
      if (value) values[i] = value;
    }
    if (!is_used) {
      throw tools::Error(option + " " + request.text + ": the surface has no cell in the mesh.");
    }
  }
  return values;
}

std::vector<double> values_of_all_cells(const Mesh& mesh, const std::string& option,
                                        const std::vector<std::string>& requests) {
  const auto given = values_of_cells(mesh, option, requests, RasterUse::mean);
  const auto missing = std::find(given.begin(), given.end(), std::nullopt);
  if (missing != given.end()) {
    const auto i = static_cast<std::size_t>(missing - given.begin());
    const Node center = mesh.center(mesh.cells[i]);
    const auto n = std::count(given.begin(), given.end(), std::nullopt);
    throw tools::Error(
        option + ": " + std::to_string(n) + " cells get no value, the first one at " +
        shown_point(center.x, center.y) + ", in " +
        name_of_zone(mesh, mesh.zones[static_cast<std::size_t>(mesh.zone_of_cell[i])]) +
        "; give one for the rest (" + option +
        " VALUE). Surfaces of the mesh: " + list_of_names(mesh.surface_names) + ".");
  }
  std::vector<double> values;
  values.reserve(given.size());
  for (const auto& value : given) values.push_back(*value);
  return values;
}

int set_elevations(Mesh& mesh, const Raster& terrain, std::optional<double> fill) {
  int n_missing = 0;
  const Node* first = nullptr;
  for (Node& node : mesh.nodes) {
    const auto z = terrain.interpolate(node.x, node.y);
    if (!z) {
      if (n_missing++ == 0) first = &node;
    }
    node.z = as_written(z ? *z : fill.value_or(0.0));
  }
  if (n_missing > 0 && !fill) {
    throw tools::Error(terrain.path() + ": no data at " + std::to_string(n_missing) + " of " +
                       std::to_string(mesh.nodes.size()) + " nodes, the first one at " +
                       shown_point(first->x, first->y) + "; the raster covers " +
                       terrain.coverage() + ", the mesh " + extent_text(mesh.nodes) +
                       "; expected terrain under every node (--fill VALUE gives the others a "
                       "value).");
  }
  return n_missing;
}

}  // namespace mesh_import
