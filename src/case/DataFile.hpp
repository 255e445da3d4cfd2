// What the data file of a case says besides its numbers: names, and what is to be written when.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "case/Case.hpp"
#include "case/FileNames.hpp"
#include "case/reference.hpp"

namespace cases {

/// A file of results that grows while the run goes on.
struct ResultsRequest {
  std::string name;                  ///< in the folder of the results
  std::optional<std::string> times;  ///< file of the times of its snapshots; none: as text has them
  bool is_double = false;            ///< 64 bits for every value, in place of 32
};

/// Names of files are those of the data file, as in FileNames.
struct DataFile {
  std::string simulation_name;
  std::string model_name = "Undefined";
  int flux_scheme = 0;  ///< its code

  std::string nodes, cells, edges;
  FileNames cell_files;  ///< those with numbers for every cell
  std::optional<std::string> rainfall, hyetocells;
  std::optional<std::string> infiltration, infiltracells;

  std::optional<int> epsg;          ///< code of the reference system of the mesh
  std::string epoch = usual_epoch;  ///< date and hour of the time 0 s, UTC

  std::string output_folder;  ///< prefix of the names of results
  double dt_enveloppe = 0.0;  ///< between envelopes, s
  std::optional<std::string> pictures, gauges, discharges;
  std::optional<MaximaRequest> maxima;
  std::optional<ResultsRequest> results;
  std::array<double, 2> origin{};  ///< taken from the coordinates of the mesh, m; for results
  std::optional<std::string> final_state;  ///< file, in the folder of the results
};

}  // namespace cases
