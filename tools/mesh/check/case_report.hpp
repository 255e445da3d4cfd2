// Everything that a check of a case says.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mesh/check/boundaries.hpp"
#include "mesh/check/cell_values.hpp"
#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"
#include "mesh/check/mesh_summary.hpp"
#include "mesh/check/trial_run.hpp"

namespace tools::check {

/// What could not be found out, because a file is at fault, is empty.
struct CaseReport {
  std::string path;
  Findings findings;
  DataFile data;
  std::optional<MeshSummary> mesh;
  std::vector<CellValues> cells;
  std::vector<long> regions;   ///< cells in each part of the mesh, the largest first
  long higher_cell_first = 0;  ///< interior edges that name the higher cell first
  std::vector<Boundary> boundaries;
  std::optional<WaterSummary> water;
  std::optional<double> first_step;  ///< s
  std::optional<TrialRun> trial;
};

/// Enters the folder of a case, or stays here if `path` is a data file, as the simulator finds the
/// files of a case in its working directory. Returns the name of the data file.
std::string enter_case(const std::string& path);

/// Reads mesh and initial state of a case; throws an Error with all that is wrong in them.
CaseReport read_case(const std::string& path);

/// Reads a whole case and reports everything about it; `with_trial` also measures a short run.
CaseReport check_case(const std::string& path, bool with_trial);

}  // namespace tools::check
