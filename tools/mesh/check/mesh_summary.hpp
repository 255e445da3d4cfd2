// Size and quality of a mesh, and the water in it at the start.
#pragma once

#include <vector>

#include "mesh/check/cell_values.hpp"
#include "mesh/check/checked_case.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

struct MeshSummary {
  int nodes = 0, cells = 0, edges = 0;
  double x_min = 0, x_max = 0, y_min = 0, y_max = 0, z_min = 0, z_max = 0;  ///< m
  double area = 0.0;                                                        ///< m2
  double smallest_angle = 180.0;                                            ///< degrees
  int sharpest_cell = -1;
  std::vector<int> smallest_cells;  ///< by characteristic length, at most ten
};

struct WaterSummary {
  double volume = 0.0;         ///< m3
  double area = 0.0;           ///< of wet cells, m2
  double largest_depth = 0.0;  ///< m
  int deepest_cell = -1;
  int wet_cells = 0;
};

/// The mesh must have its geometry.
MeshSummary mesh_summary(const cases::Mesh& mesh, const std::vector<CellValues>& cells);
WaterSummary water_summary(const DataFile& data, const std::vector<CellValues>& cells);

/// Reports cells and edges whose coordinates overflow.
void check_finite_geometry(const CheckedCase& checked, const std::vector<CellValues>& cells,
                           Findings& findings);
/// Reports cells without an area and very sharp angles.
void check_quality(const MeshSummary& mesh, const std::vector<CellValues>& cells,
                   Findings& findings);

}  // namespace tools::check
