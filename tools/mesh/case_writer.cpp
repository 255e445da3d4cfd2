#include "mesh/case_writer.hpp"

#include <array>
#include <filesystem>
#include <list>
#include <nlohmann/json.hpp>

#include "case/keys.hpp"
#include "globals/edge_codes.hpp"
#include "mesh/numbers.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"

namespace mesh_import {

namespace {

namespace fs = std::filesystem;
using cases::key;

constexpr char data_name[] = "data.json";
constexpr char nodes_name[] = "nodes.txt";
constexpr char cells_name[] = "cells.txt";
constexpr char edges_name[] = "edges.txt";
constexpr char initial_name[] = "initial.txt";
constexpr char bed_name[] = "bed.txt";
constexpr char friction_name[] = "friction.txt";
constexpr char sediment_name[] = "sediment.txt";
constexpr char rain_name[] = "rain.txt";
constexpr char hyetocells_name[] = "hyetocells.txt";
constexpr char soils_name[] = "soils.txt";
constexpr char soilcells_name[] = "soilcells.txt";
constexpr char snapshots_name[] = "snapshots.txt";
constexpr char gauges_name[] = "gauges.txt";
constexpr char sections_name[] = "sections.txt";

std::string text_of_nodes(const Mesh& mesh) {
  std::string text = std::to_string(mesh.nodes.size()) + "\n";
  for (const Node& node : mesh.nodes) {
    append_number(text, node.x);
    text += ' ';
    append_number(text, node.y);
    text += ' ';
    append_number(text, node.z);
    text += '\n';
  }
  return text;
}

std::string text_of_cells(const Mesh& mesh) {
  std::string text = std::to_string(mesh.cells.size()) + "\n";
  for (const Cell& cell : mesh.cells) {
    text += std::to_string(cell.size());
    for (int k = 0; k < cell.size(); ++k) {
      text += ' ';
      text += std::to_string(cell.node(k));
    }
    text += '\n';
  }
  return text;
}

/// What follows the code of a boundary edge.
std::string argument_of(const Boundary& boundary) {
  std::string text;
  if (!boundary.series_name.empty()) {
    text = " " + boundary.series_name;
  } else if (boundary.kind->has_value()) {
    text = " ";
    append_number(text, boundary.value);
  }
  return text;
}

std::string text_of_edges(const std::vector<Edge>& edges, const Boundaries& boundaries) {
  std::string text = std::to_string(edges.size()) + "\n";
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Edge& edge = edges[i];
    for (const int index : {edge.left, edge.right, edge.node1, edge.node2}) {
      text += std::to_string(index);
      text += ' ';
    }
    if (edge.is_boundary()) {
      const auto& boundary = boundaries.list[static_cast<std::size_t>(boundaries.of_edge[i])];
      text += std::to_string(boundary.kind->code);
      text += argument_of(boundary);
    } else {
      text += std::to_string(edge_code::interior);
    }
    text += '\n';
  }
  return text;
}

std::string column(const std::vector<double>& values, const char* line_end = "\n") {
  std::string text;
  for (const double value : values) {
    append_number(text, value);
    text += line_end;
  }
  return text;
}

std::string column(const std::vector<int>& values) {
  std::string text;
  for (const int value : values) {
    text += std::to_string(value);
    text += '\n';
  }
  return text;
}

std::string text_of_gauges(const std::vector<Node>& gauges, double interval) {
  std::string text = std::to_string(gauges.size()) + " " + gauges_name + " ";
  append_number(text, interval);
  text += '\n';
  for (const Node& gauge : gauges) {
    append_number(text, gauge.x);
    text += ' ';
    append_number(text, gauge.y);
    text += " 0\n";
  }
  return text;
}

std::string text_of_sections(const std::vector<Section>& sections, double interval) {
  std::string text = std::to_string(sections.size()) + " ";
  append_number(text, interval);
  text += std::string(" out/") + sections_name + "\n";
  for (const Section& section : sections) {
    text += std::to_string(section.edges.size());
    for (const int edge : section.edges) {
      text += ' ';
      text += std::to_string(edge);
    }
    text += '\n';
  }
  return text;
}

/// The data file, key by key in the order in which they shall stand there.
class DataFile {
 public:
  template <class T>
  void set(const cases::Key& key, const T& value) {
    document_[Json::json_pointer("/" + std::string(key.path))] = value;
  }
  void set_empty(const cases::Key& section) { set(section, Json::object()); }
  std::string text() const { return document_.dump(2) + "\n"; }

 private:
  using Json = nlohmann::ordered_json;
  Json document_;
};

void set_model(const Case& contents, DataFile& data) {
  const bool has_sediments = !contents.sediment.empty();
  data.set(key("model/name"), has_sediments ? cases::sediment_model : cases::water_model);
  data.set(key("model/flux scheme"), cases::flux_scheme);
  if (contents.zero_depth) data.set(key("model/zero depth value"), *contents.zero_depth);
  data.set(key("model/conditions/initial conditions"), initial_name);
  if (!contents.bed.empty()) data.set(key("model/conditions/fixed bed level"), bed_name);
  if (!contents.friction.empty()) data.set(key("model/conditions/friction"), friction_name);
  if (!has_sediments) return;
  data.set(key("model/conditions/initial sediments level"), sediment_name);
  const SedimentParameters& sediments = contents.sediments;
  data.set(key("model/parameters/sediments mean grain diameter"), sediments.grain_diameter);
  data.set(key("model/parameters/sediments density"), sediments.density);
  data.set(key("model/parameters/sediments friction coefficient"), contents.friction.front());
  data.set(key("model/parameters/sediments porosity"), sediments.porosity);
}

void set_sources(const Case& contents, DataFile& data) {
  data.set_empty(key("model/sources"));
  if (!contents.rain.empty()) {
    data.set(key("model/sources/rainfall"), rain_name);
    data.set(key("model/sources/hyetocells"), hyetocells_name);
  }
  if (!contents.soil.empty()) {
    data.set(key("model/sources/infiltration"), soils_name);
    data.set(key("model/sources/infiltracells"), soilcells_name);
  }
}

std::string data_file(const Case& contents) {
  DataFile data;
  data.set(key("name"), contents.name);
  data.set(key("t0"), 0.0);
  data.set(key("tend"), contents.end);
  data.set(key("CFL"), contents.courant);
  data.set(key("mesh/nodes"), nodes_name);
  data.set(key("mesh/cells"), cells_name);
  data.set(key("mesh/edges"), edges_name);
  if (contents.origin) {
    data.set(key("mesh/origin"), std::array{contents.origin->x, contents.origin->y});
  }
  set_model(contents, data);
  set_sources(contents, data);
  data.set(key("output/folder"), "out/");
  data.set(key("output/time step enveloppe of results"), contents.envelope_interval);
  data.set(key("output/snapshots of flow"), snapshots_name);
  data.set(key("output/gauges"), gauges_name);
  if (!contents.sections.empty()) data.set(key("output/discharges"), sections_name);
  return data.text();
}

/// Files take their places together when all of them are complete, in the order in which they were
/// written: a case that was there stays as it was if one of them cannot be written.
class Folder {
 public:
  explicit Folder(const std::string& path) : path_(path) {
    std::error_code error;
    fs::create_directories(path_ / "out", error);
    if (error) {
      throw tools::Error(path + ": the folder cannot be created (" + error.message() + ").");
    }
  }

  void write(const std::string& name, const std::string& text) {
    tools::PartialStream& file = files_.emplace_back(path_ / name);
    file.stream().write(text.data(), static_cast<std::streamsize>(text.size()));
    file.finish();
  }
  void commit() {
    for (tools::PartialStream& file : files_) file.commit();
  }

 private:
  fs::path path_;
  std::list<tools::PartialStream> files_;
};

}  // namespace

void write_case(const Case& contents, const std::string& path) {
  Folder folder(path);
  folder.write(nodes_name, text_of_nodes(contents.mesh));
  folder.write(cells_name, text_of_cells(contents.mesh));
  folder.write(edges_name, text_of_edges(contents.edges, contents.boundaries));
  folder.write(initial_name, column(contents.level, " 0 0\n"));
  if (!contents.bed.empty()) folder.write(bed_name, column(contents.bed));
  if (!contents.friction.empty()) folder.write(friction_name, column(contents.friction));
  if (!contents.sediment.empty()) folder.write(sediment_name, column(contents.sediment));
  if (!contents.rain.empty()) {
    folder.write(rain_name, contents.rain_file);
    folder.write(hyetocells_name, column(contents.rain));
  }
  if (!contents.soil.empty()) {
    folder.write(soils_name, contents.soil_file);
    folder.write(soilcells_name, column(contents.soil));
  }
  for (const Boundary& boundary : contents.boundaries.list) {
    if (!boundary.series_name.empty()) folder.write(boundary.series_name, boundary.series);
  }
  folder.write(snapshots_name,
               std::to_string(contents.snapshots.size()) + "\n" + column(contents.snapshots));
  folder.write(gauges_name, text_of_gauges(contents.gauges, contents.recording_interval));
  if (!contents.sections.empty()) {
    folder.write(sections_name, text_of_sections(contents.sections, contents.recording_interval));
  }
  folder.write(data_name, data_file(contents));
  // From here on until all is in its place, there is no case that could run.
  std::error_code ignored;
  fs::remove(fs::path(path) / data_name, ignored);
  folder.commit();
}

}  // namespace mesh_import
