// A complete case in a folder: data file, mesh of a rectangle, fields and outputs.
#pragma once

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"

namespace support {

struct Point {
  double x, y;
};

/// Free-surface level (m) and unit discharges (m2/s).
struct InitialState {
  double zs, qx = 0.0, qy = 0.0;
};

/// Squares, each cut into a lower and an upper triangle by its rising diagonal. At first: still
/// water 1 m deep between walls over a flat bed, from 0 s to 1 s, without optional features.
class Case {
 public:
  Case();

  int nx = 4, ny = 3;         ///< squares along x and y
  double size = 1.0;          ///< side of a square, m
  double x0 = 0.0, y0 = 0.0;  ///< south-west corner, m
  bool clockwise = false;     ///< whether the nodes of cells run clockwise
  std::function<double(double, double)> bed;
  std::function<InitialState(double, double)> initial;
  /// Boundary codes of the sides, with their value or file: "-5", "-3 -0.1", "-33 series.txt".
  std::string west = "-5", east = "-5", south = "-5", north = "-5";

  nlohmann::json data;                       ///< the data file
  std::map<std::string, std::string> files;  ///< further files; one of the mesh replaces it

  int n_cells() const { return 2 * nx * ny; }
  int lower(int i, int j) const { return 2 * (j * nx + i); }
  int upper(int i, int j) const { return lower(i, j) + 1; }
  /// Mean of the vertices of a cell.
  Point center(int cell) const;
  /// The edges on the line x = x0 + i size, whose normals point towards positive x (except on the
  /// western side, where they point out).
  std::vector<int> edges_across(int i) const;

  // Texts of the mesh and field files.
  std::string nodes_text() const;
  std::string cells_text() const;
  std::string edges_text() const;
  std::string initial_text() const;
  /// The same record for every cell.
  std::string per_cell(const std::string& record) const;

  void set_times(double t0, double tend);
  void add_gauges(const std::vector<Point>& points, double interval,
                  const std::string& result = "gauges.txt");
  void add_snapshots(const std::vector<double>& times);
  void add_sections(const std::vector<std::vector<int>>& sections, double interval,
                    const std::string& result = "sections.txt");
  void add_fixed_bed(const std::string& text);
  void add_friction(const std::string& text);
  void add_rain(const std::string& hyetograms, const std::string& hyetocells);
  void add_infiltration(const std::string& soils, const std::string& infiltracells);
  void add_initial_infiltration(const std::string& text);

  /// Writes every file, and creates the output folder.
  void write(const TemporaryFolder& folder) const;

 private:
  struct Edge {
    int left, right, node1, node2;
    std::string code;
  };

  int node(int i, int j) const { return j * (nx + 1) + i; }
  double node_x(int i) const { return x0 + i * size; }
  double node_y(int j) const { return y0 + j * size; }
  /// Nodes of a cell, counter-clockwise.
  std::vector<int> nodes_of(int cell) const;
  std::vector<Edge> edges() const;
};

/// A number with all its digits, for an input file.
std::string exact(double value);

/// A flow that enters, leaves and meets a level, with all optional features and every kind of
/// output, from 0 s to 2.5 s.
Case full_case(int nx = 4, int ny = 3);

}  // namespace support
