#include "mesh/import_features.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "mesh/extent.hpp"
#include "mesh/features.hpp"
#include "mesh/numbers.hpp"
#include "mesh/run_options.hpp"
#include "mesh/sections.hpp"
#include "mesh/snap.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

constexpr const char* zone_values[] = {"friction", "strickler", "level", "bed",
                                       "sediment", "rain",      "soil"};

std::vector<std::string>& requests_for(const std::string& value, ImportOptions& options) {
  if (value == "friction") return options.friction;
  if (value == "strickler") return options.strickler;
  if (value == "level") return options.level;
  if (value == "bed") return options.bed;
  if (value == "sediment") return options.sediment;
  return value == "rain" ? options.rain : options.soil;
}

/// The name of a feature, its own or "zone 3".
std::string name_of(Attributes& attributes, const std::string& kind, std::size_t index) {
  const std::string name = attributes.text("name").value_or(kind + " " + std::to_string(index + 1));
  if (name.find('=') != std::string::npos) {
    attributes.refuse("found the name \"" + name + "\", expected one without \"=\"");
  }
  return name;
}

/// A distance for the user, who wants to know how large it is.
std::string rounded(double distance) { return utils::number_text(distance, 2); }

double snap_distance(const ImportOptions& options, const Case& contents) {
  return options.snap.value_or(mean_length(contents.mesh, contents.edges));
}

void tell_remark(const FeatureFile& file, std::ostream& out) {
  if (const std::string remark = file.remark(); !remark.empty()) out << remark << "\n";
}

/// Adds a line that the mesh does not have yet.
int add_line(const std::string& name, const Attributes& attributes, Mesh& mesh) {
  const auto& names = mesh.line_names;
  if (std::find(names.begin(), names.end(), name) != names.end()) {
    attributes.refuse("the mesh has a line \"" + name + "\" already; expected another name");
  }
  mesh.line_names.push_back(name);
  return static_cast<int>(mesh.line_names.size()) - 1;
}

std::vector<Node> all_points(const Feature& feature) {
  std::vector<Node> points;
  for (const auto& part : feature.parts) points.insert(points.end(), part.begin(), part.end());
  return points;
}

[[noreturn]] void refuse_place(const std::string& name, const Feature& feature, const Mesh& mesh,
                               const std::string& fault, const std::string& expected) {
  throw tools::Error(feature.place + ": \"" + name + "\" " + fault + "; it covers " +
                     extent_text(all_points(feature)) + ", the mesh " + extent_text(mesh.nodes) +
                     ". Expected " + expected + ".");
}

std::string snapped_text(const Snapped& snapped, const Feature& feature) {
  const std::string edges = utils::counted(snapped.pieces.size(), "edge");
  if (feature.shape == Feature::Shape::polygons) return edges + " inside of the polygon";
  return edges + ", no further than " + rounded(snapped.distance) + " m from the line";
}

/// The condition that the attributes ask for; series lie beside the file of the features.
BoundaryRequest condition_of(const std::string& name, const std::string& file,
                             Attributes& attributes) {
  BoundaryRequest request;
  request.name = name;
  std::string kind = attributes.text("kind").value_or("");
  auto argument = attributes.text("value");
  const auto unit = attributes.text("unit"), series = attributes.text("series");
  if (argument && unit) *argument += " " + *unit;
  if (series) {
    if (argument) attributes.refuse("found a value and a series, expected one of them");
    if (kind == "discharge") kind = "hydrograph";
    if (kind == "level") kind = "limnigraph";
    argument = (std::filesystem::path(file).parent_path() / *series).string();
  }
  if (const auto expected = set_condition(kind, argument, request)) {
    attributes.refuse("found the kind \"" + kind + "\"" +
                      (argument ? " with \"" + *argument + "\"" : "") + ", expected " + *expected);
  }
  if (attributes.flag("reversed")) {
    if (!request.kind->imposes_discharge()) {
      attributes.refuse("reversed turns the sign of a discharge; found the kind \"" + kind + "\"");
    }
    request.sign = -1.0;
  }
  return request;
}

Snapped boundary_of(const Feature& feature, const Case& contents, double distance) {
  if (feature.shape == Feature::Shape::polygons) {
    return boundary_inside(contents.mesh, contents.edges, Polygon(feature.parts));
  }
  Snapped all;
  for (const auto& part : feature.parts) {
    const Snapped snapped = boundary_along(contents.mesh, contents.edges, Polyline(part), distance);
    all.pieces.insert(all.pieces.end(), snapped.pieces.begin(), snapped.pieces.end());
    all.distance = std::max(all.distance, snapped.distance);
  }
  return all;
}

/// The nearest cell to a point, by its centre, and how far that is.
std::pair<const Cell*, double> nearest_cell(const Mesh& mesh, const Node& point) {
  const Cell* nearest = nullptr;
  double least = 0.0;
  for (const Cell& cell : mesh.cells) {
    const Node center = mesh.center(cell);
    const double distance = std::hypot(center.x - point.x, center.y - point.y);
    if (nearest != nullptr && !(distance < least)) continue;
    nearest = &cell;
    least = distance;
  }
  return {nearest, least};
}

/// A zone of one or several features of a name.
struct DrawnZone {
  std::size_t n_features = 0, n_cells = 0;
  std::map<std::string, std::string> values;
  int surface = -1;
};

class DrawnZones {
 public:
  DrawnZones(ImportOptions& options, Mesh& mesh)
      : options_(options), mesh_(mesh), surfaces_of_cell_(mesh.cells.size()) {
    for (std::size_t i = 0; i < mesh.cells.size(); ++i) {
      surfaces_of_cell_[i] = mesh.zones[static_cast<std::size_t>(mesh.zone_of_cell[i])];
      centers_.push_back(mesh.center(mesh.cells[i]));
    }
  }

  void add(const Feature& feature, std::size_t index, FeatureFile& file) {
    Attributes attributes(feature);
    const std::string name = name_of(attributes, "zone", index);
    if (feature.shape != Feature::Shape::polygons) attributes.refuse("expected a polygon");
    std::map<std::string, std::string> values;
    for (const char* value : zone_values) {
      if (const auto given = attributes.text(value)) values[value] = *given;
    }
    file.note(attributes);
    DrawnZone& zone = zone_of(name, attributes);
    if (zone.n_features++ > 0 && zone.values != values) {
      attributes.refuse("the zone \"" + name +
                        "\" has other values than an earlier feature of "
                        "this name; expected the same, or another name");
    }
    zone.values = values;
    const Polygon polygon(feature.parts);
    for (std::size_t i = 0; i < centers_.size(); ++i) {
      if (!polygon.holds(centers_[i].x, centers_[i].y)) continue;
      std::vector<int>& surfaces = surfaces_of_cell_[i];
      if (!surfaces.empty() && surfaces.back() == zone.surface) continue;
      surfaces.push_back(zone.surface);
      ++zone.n_cells;
    }
  }

  /// Gives the mesh its zones and the options their requests.
  void finish(std::ostream& out) {
    set_zones();
    std::map<std::string, std::vector<std::string>> requests;
    for (const std::string& name : order_) {
      const DrawnZone& zone = zones_.at(name);
      out << "Zone " << name << ": " << utils::counted(zone.n_features, "feature") << ", "
          << utils::counted(zone.n_cells, "cell");
      for (const auto& [value, text] : zone.values) out << ", " << value << " " << text;
      out << ".\n";
      if (zone.n_cells == 0) continue;
      for (const auto& [value, text] : zone.values) requests[value].push_back(name + "=" + text);
    }
    for (const auto& [value, drawn] : requests) {
      std::vector<std::string>& all = requests_for(value, options_);
      all.insert(all.begin(), drawn.begin(), drawn.end());
    }
  }

 private:
  DrawnZone& zone_of(const std::string& name, const Attributes& attributes) {
    const auto [place, is_new] = zones_.try_emplace(name);
    if (!is_new) return place->second;
    auto& names = mesh_.surface_names;
    if (std::find(names.begin(), names.end(), name) != names.end()) {
      attributes.refuse("the mesh has a surface \"" + name + "\" already; expected another name");
    }
    place->second.surface = static_cast<int>(names.size());
    names.push_back(name);
    order_.push_back(name);
    return place->second;
  }

  /// Every combination of surfaces is a zone of the mesh.
  void set_zones() {
    std::map<std::vector<int>, int> numbers;
    mesh_.zones.clear();
    for (std::size_t i = 0; i < surfaces_of_cell_.size(); ++i) {
      std::vector<int>& surfaces = surfaces_of_cell_[i];
      std::sort(surfaces.begin(), surfaces.end());
      surfaces.erase(std::unique(surfaces.begin(), surfaces.end()), surfaces.end());
      const auto [place, is_new] =
          numbers.try_emplace(surfaces, static_cast<int>(mesh_.zones.size()));
      if (is_new) mesh_.zones.push_back(surfaces);
      mesh_.zone_of_cell[i] = place->second;
    }
  }

  ImportOptions& options_;
  Mesh& mesh_;
  std::vector<Node> centers_;
  std::vector<std::vector<int>> surfaces_of_cell_;
  std::map<std::string, DrawnZone> zones_;
  std::vector<std::string> order_;  // of the names in the file
};

}  // namespace

void add_drawn_zones(ImportOptions& options, Mesh& mesh, std::ostream& out) {
  if (options.drawn_zones.empty()) return;
  FeatureFile file(options.drawn_zones, options.epsg);
  DrawnZones zones(options, mesh);
  for (std::size_t i = 0; i < file.features().size(); ++i) zones.add(file.features()[i], i, file);
  zones.finish(out);
  tell_remark(file, out);
}

void add_drawn_boundaries(const ImportOptions& options, Case& contents, BoundaryRequests& requests,
                          std::ostream& out) {
  if (options.drawn_boundaries.empty()) return;
  FeatureFile file(options.drawn_boundaries, options.epsg);
  const double distance = snap_distance(options, contents);
  for (std::size_t i = 0; i < file.features().size(); ++i) {
    const Feature& feature = file.features()[i];
    Attributes attributes(feature);
    const std::string name = name_of(attributes, "boundary", i);
    if (feature.shape == Feature::Shape::points) {
      attributes.refuse("expected a line along the boundary, or a polygon around its edges");
    }
    requests.conditions.push_back(condition_of(name, options.drawn_boundaries, attributes));
    if (const auto spread = attributes.text("spread")) {
      const auto request = read_spread(name, *spread);
      if (!request) {
        attributes.refuse("found the spread \"" + *spread + "\", expected even or a level");
      }
      requests.spreads.push_back(*request);
    }
    file.note(attributes);
    const int line = add_line(name, attributes, contents.mesh);
    const Snapped snapped = boundary_of(feature, contents, distance);
    if (snapped.pieces.empty()) {
      refuse_place(name, feature, contents.mesh,
                   "goes along no edge of the boundary within " + shown(distance) + " m",
                   "a line along half an edge or more, or a larger --snap");
    }
    for (const auto& [a, b] : snapped.pieces) contents.mesh.line_pieces.push_back({a, b, line});
    out << "Boundary " << name << " (" << feature.place << "): " << snapped_text(snapped, feature)
        << ".\n";
  }
  tell_remark(file, out);
}

void add_drawn_sections(const ImportOptions& options, const EdgeIndex& index,
                        std::vector<bool>& is_taken, Case& contents, std::ostream& out) {
  if (options.drawn_sections.empty()) return;
  FeatureFile file(options.drawn_sections, options.epsg);
  const double distance = snap_distance(options, contents);
  Mesh& mesh = contents.mesh;
  for (std::size_t i = 0; i < file.features().size(); ++i) {
    const Feature& feature = file.features()[i];
    Attributes attributes(feature);
    const std::string name = name_of(attributes, "section", i);
    if (feature.shape != Feature::Shape::lines || feature.parts.size() != 1) {
      attributes.refuse("expected one line");
    }
    const bool is_reversed = attributes.flag("reversed");
    file.note(attributes);
    const int line = add_line(name, attributes, mesh);
    const Snapped snapped =
        chain_along(mesh, contents.edges, is_taken, Polyline(feature.parts.front()), distance);
    if (snapped.pieces.empty()) {
      refuse_place(name, feature, mesh,
                   "is followed by no chain of inner edges within " + shown(distance) + " m",
                   "a line of more than an edge inside of the mesh, or a larger --snap");
    }
    for (const auto& [a, b] : snapped.pieces) {
      mesh.line_pieces.push_back({a, b, line});
      is_taken[static_cast<std::size_t>(index.find(a, b))] = true;
    }
    contents.sections.push_back(
        make_section(mesh, contents.edges, index, name + (is_reversed ? "=reversed" : "")));
    out << "Section " << name << " (" << feature.place << "): " << snapped_text(snapped, feature)
        << ".\n";
  }
  tell_remark(file, out);
}

void add_drawn_gauges(const ImportOptions& options, Case& contents, std::ostream& out) {
  if (options.drawn_gauges.empty()) return;
  FeatureFile file(options.drawn_gauges, options.epsg);
  const double distance = snap_distance(options, contents);
  for (std::size_t i = 0; i < file.features().size(); ++i) {
    const Feature& feature = file.features()[i];
    Attributes attributes(feature);
    const std::string name = name_of(attributes, "gauge", i);
    if (feature.shape != Feature::Shape::points || feature.parts.size() != 1) {
      attributes.refuse("expected one point");
    }
    file.note(attributes);
    const Node& drawn = feature.parts.front().front();
    auto place = place_gauge(contents.mesh, drawn);
    if (!place) {
      const auto [cell, far] = nearest_cell(contents.mesh, drawn);
      if (far > distance) {
        refuse_place(name, feature, contents.mesh,
                     "lies in no cell, and further than " + shown(distance) + " m from the next",
                     "a point inside of the mesh, or a larger --snap");
      }
      place = point_inside(contents.mesh, *cell);
    }
    contents.gauges.push_back({*place, name});
    const double moved = std::hypot(place->x - drawn.x, place->y - drawn.y);
    out << "Gauge " << name << " (" << feature.place << "): at " << shown_point(place->x, place->y);
    if (moved > 0.0) out << ", " << rounded(moved) << " m from where it was drawn";
    out << ".\n";
  }
  tell_remark(file, out);
}

}  // namespace mesh_import
