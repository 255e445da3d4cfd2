// What the data file of a case says besides its numbers: names, and what is to be written when.
#pragma once

#include <optional>
#include <string>

namespace cases {

/// Names of files are those of the data file: relative ones are found from the working directory.
struct DataFile {
  std::string simulation_name;
  std::string model_name = "Undefined";
  int flux_scheme = 0;  ///< its code

  std::string nodes, cells, edges;
  std::string initial_conditions;
  std::optional<std::string> fixed_bed_level, friction;
  std::optional<std::string> sediments_level;  ///< of the model with sediments
  std::optional<std::string> rainfall, hyetocells;
  std::optional<std::string> infiltration, infiltracells;
  std::optional<std::string> initial_infiltration;

  std::string output_folder;  ///< prefix of the names of results
  double dt_enveloppe = 0.0;  ///< between envelopes, s
  std::optional<std::string> pictures, gauges, discharges;
};

}  // namespace cases
