#include "support/Case.hpp"

#include <sstream>

namespace support {

std::string exact(double value) {
  std::ostringstream text;
  text.precision(17);
  text << value;
  return text.str();
}

Case::Case() {
  bed = [](double, double) { return 0.0; };
  initial = [](double, double) { return InitialState{1.0}; };
  data = nlohmann::json::parse(R"({
    "name": "Still water",
    "t0": 0, "tend": 1, "CFL": 0.5,
    "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
    "model": {"name": "Quillmere", "flux scheme": "LHLLC",
              "conditions": {"initial conditions": "initial.txt"},
              "sources": {}},
    "output": {"folder": "out/", "time step enveloppe of results": 0.25}
  })");
}

std::vector<int> Case::nodes_of(int cell) const {
  const int i = (cell / 2) % nx;
  const int j = (cell / 2) / nx;
  if (cell % 2 == 0) return {node(i, j), node(i + 1, j), node(i + 1, j + 1)};
  return {node(i, j), node(i + 1, j + 1), node(i, j + 1)};
}

Point Case::center(int cell) const {
  Point sum{0.0, 0.0};
  for (const int n : nodes_of(cell)) {
    sum.x += node_x(n % (nx + 1));
    sum.y += node_y(n / (nx + 1));
  }
  return {sum.x / 3.0, sum.y / 3.0};
}

std::vector<Case::Edge> Case::edges() const {
  const std::string inside = "-1";
  std::vector<Edge> all;
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      // A node pair in the counter-clockwise order of the left cell has its normal outwards.
      const int low = lower(i, j);
      const int high = upper(i, j);
      all.push_back({low, high, node(i + 1, j + 1), node(i, j), inside});
      const bool at_south = j == 0;
      all.push_back({low, at_south ? -1 : upper(i, j - 1), node(i, j), node(i + 1, j),
                     at_south ? south : inside});
      const bool at_east = i == nx - 1;
      all.push_back({low, at_east ? -1 : upper(i + 1, j), node(i + 1, j), node(i + 1, j + 1),
                     at_east ? east : inside});
      if (i == 0) all.push_back({high, -1, node(i, j + 1), node(i, j), west});
      if (j == ny - 1) all.push_back({high, -1, node(i + 1, j + 1), node(i, j + 1), north});
    }
  }
  return all;
}

std::vector<int> Case::edges_across(int i) const {
  std::vector<int> found;
  const std::vector<Edge> all = edges();
  for (std::size_t k = 0; k < all.size(); ++k) {
    const bool on_line = all[k].node1 % (nx + 1) == i && all[k].node2 % (nx + 1) == i;
    if (on_line) found.push_back(static_cast<int>(k));
  }
  return found;
}

std::string Case::nodes_text() const {
  std::string text = std::to_string((nx + 1) * (ny + 1)) + "\n";
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      const double x = node_x(i);
      const double y = node_y(j);
      text += exact(x) + " " + exact(y) + " " + exact(bed(x, y)) + "\n";
    }
  }
  return text;
}

std::string Case::cells_text() const {
  std::string text = std::to_string(n_cells()) + "\n";
  for (int cell = 0; cell < n_cells(); ++cell) {
    std::vector<int> nodes = nodes_of(cell);
    if (clockwise) std::swap(nodes[1], nodes[2]);
    text += "3";
    for (const int n : nodes) text += " " + std::to_string(n);
    text += "\n";
  }
  return text;
}

std::string Case::edges_text() const {
  const std::vector<Edge> all = edges();
  std::string text = std::to_string(all.size()) + "\n";
  for (const Edge& edge : all) {
    for (const int value : {edge.left, edge.right, edge.node1, edge.node2}) {
      text += std::to_string(value) + " ";
    }
    text += edge.code + "\n";
  }
  return text;
}

std::string Case::initial_text() const {
  std::string text;
  for (int cell = 0; cell < n_cells(); ++cell) {
    const Point c = center(cell);
    const InitialState state = initial(c.x, c.y);
    text += exact(state.zs) + " " + exact(state.qx) + " " + exact(state.qy) + "\n";
  }
  return text;
}

std::string Case::per_cell(const std::string& record) const {
  std::string text;
  for (int cell = 0; cell < n_cells(); ++cell) text += record + "\n";
  return text;
}

void Case::set_times(double t0, double tend) {
  data["t0"] = t0;
  data["tend"] = tend;
}

void Case::add_gauges(const std::vector<Point>& points, double interval,
                      const std::string& result) {
  std::string text = std::to_string(points.size()) + " " + result + "\n" + exact(interval) + "\n";
  for (const Point& point : points) text += exact(point.x) + " " + exact(point.y) + " 0\n";
  files["gauges_in.txt"] = text;
  data["output"]["gauges"] = "gauges_in.txt";
}

void Case::add_snapshots(const std::vector<double>& times) {
  std::string text = std::to_string(times.size()) + "\n";
  for (const double time : times) text += exact(time) + "\n";
  files["snapshots_in.txt"] = text;
  data["output"]["snapshots of flow"] = "snapshots_in.txt";
}

void Case::add_sections(const std::vector<std::vector<int>>& sections, double interval,
                        const std::string& result) {
  std::string text = std::to_string(sections.size()) + " " + exact(interval) + " " + result + "\n";
  for (const std::vector<int>& section : sections) {
    text += std::to_string(section.size());
    for (const int edge : section) text += " " + std::to_string(edge);
    text += "\n";
  }
  files["sections_in.txt"] = text;
  data["output"]["discharges"] = "sections_in.txt";
}

void Case::add_fixed_bed(const std::string& text) {
  files["bed.txt"] = text;
  data["model"]["conditions"]["fixed bed level"] = "bed.txt";
}

void Case::add_friction(const std::string& text) {
  files["friction.txt"] = text;
  data["model"]["conditions"]["friction"] = "friction.txt";
}

void Case::add_rain(const std::string& hyetograms, const std::string& hyetocells) {
  files["rain.txt"] = hyetograms;
  files["hyetocells.txt"] = hyetocells;
  data["model"]["sources"]["rainfall"] = "rain.txt";
  data["model"]["sources"]["hyetocells"] = "hyetocells.txt";
}

void Case::add_infiltration(const std::string& soils, const std::string& infiltracells) {
  files["soils.txt"] = soils;
  files["infiltracells.txt"] = infiltracells;
  data["model"]["sources"]["infiltration"] = "soils.txt";
  data["model"]["sources"]["infiltracells"] = "infiltracells.txt";
}

void Case::add_initial_infiltration(const std::string& text) {
  files["infiltrated.txt"] = text;
  data["model"]["sources"]["initial infiltration"] = "infiltrated.txt";
}

void Case::write(const TemporaryFolder& folder) const {
  folder.write("nodes.txt", nodes_text());
  folder.write("cells.txt", cells_text());
  folder.write("edges.txt", edges_text());
  folder.write("initial.txt", initial_text());
  for (const auto& [name, text] : files) folder.write(name, text);
  folder.write("data.json", data.dump(2) + "\n");
  std::filesystem::create_directories(folder.file("out"));
}

Case full_case(int nx, int ny) {
  Case c;
  c.nx = nx;
  c.ny = ny;
  c.data["name"] = "River with everything";
  c.data["tend"] = 2.5;
  c.data["model"]["zero depth value"] = 0.001;
  c.initial = [](double x, double) { return InitialState{1.0 - 0.01 * x, 0.1}; };
  c.west = "-33 inflow.txt";
  c.east = "-2";
  c.north = "-44 level.txt";
  c.files["inflow.txt"] = "3\n0 -0.1\n1 -0.2\n20 -0.1\n";
  c.files["level.txt"] = "2\n0 0.98\n10 0.97\n";
  c.add_fixed_bed(c.per_cell("0.05"));
  c.add_friction(c.per_cell("0.03"));
  c.add_rain("1\n7 2 1\n0 0.001\n1 0.002\n", c.per_cell("7"));
  c.add_infiltration("2\n1 GreenAmpt 0.00001 0.1 0.2 0.4 1 0\n2 Horton 0.0001 0.00001 1 0.5 0\n",
                     c.per_cell("2"));
  c.add_initial_infiltration(c.per_cell("0.01"));
  c.add_gauges({{0.35 * nx, 0.55 * ny}, {0.9 * nx, 0.7 * ny}}, 0.5);
  c.add_snapshots({0.0, 0.5, 1.25});
  c.add_sections({c.edges_across(nx / 2), c.edges_across(nx)}, 0.5);
  return c;
}

}  // namespace support
