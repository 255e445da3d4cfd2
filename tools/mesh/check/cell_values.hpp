// Geometry and initial state of every cell, as the simulator sets them up.
#pragma once

#include <optional>
#include <vector>

#include "case/Case.hpp"
#include "mesh/check/data_file.hpp"

namespace tools::check {

struct CellValues {
  physics::SpacePoint center;
  double area;           ///< m2
  double accurate_area;  ///< without what rounding takes from it, m2
  double char_length;    ///< 2 area / perimeter, m
  double bed;            ///< with its sediment, m
  double depth;          ///< m; 0 where the initial conditions are at fault
  double velocity;       ///< m/s, 0 in a dry cell
  double step;           ///< stable time step before the Courant factor, s
  bool has_finite_geometry;
};

/// One entry per cell; the mesh must have its geometry.
std::vector<CellValues> cell_values(const cases::Case& contents);

/// First time step of the run (s); empty without a Courant number or initial conditions.
std::optional<double> first_time_step(const DataFile& data, const cases::CellFields& fields,
                                      const std::vector<CellValues>& cells);

}  // namespace tools::check
