// The per-cell files of a case, its rain and its soils.
#pragma once

#include <string>
#include <vector>

#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// A record per cell; a field whose file is absent or at fault is empty.
struct CaseFields {
  std::vector<double> bed_rock;     ///< m
  std::vector<double> sediment;     ///< thickness, m
  std::vector<double> friction;     ///< Manning coefficient, s/m^(1/3)
  std::vector<double> level;        ///< m
  std::vector<double> qx, qy;       ///< m2/s
  std::vector<double> infiltrated;  ///< m
};

struct Hyetogram {
  int id = 0;
  int step = 0;                     ///< s
  std::vector<double> times;        ///< s
  std::vector<double> intensities;  ///< m/s
};

struct Soil {
  int id = 0;
  std::string type;
  std::vector<double> parameters;  ///< in the order of the file
};

/// Reads the per-cell files for `n_cells` cells and reports what is malformed; with a negative
/// number, because the cells file is at fault, it only tries to open them.
CaseFields read_fields(const DataFile& data, int n_cells, Findings& findings);

/// Reads and checks rain, soils, and the IDs that cells refer to them by.
std::vector<Hyetogram> read_rain(const DataFile& data, int n_cells, Findings& findings);
std::vector<Soil> read_soils(const DataFile& data, int n_cells, Findings& findings);

}  // namespace tools::check
