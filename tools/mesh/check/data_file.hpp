// The data file of a case, checked key by key.
#pragma once

#include <optional>
#include <string>

#include "case/FileNames.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// What the data file says; a value is empty where its key is absent, not used, or at fault.
struct DataFile {
  std::optional<std::string> name;
  std::optional<double> t0, tend;  ///< s
  std::optional<double> cfl;

  cases::FileNames files;

  std::optional<std::string> model, flux_scheme;
  double zero_depth = 0.0;  ///< m
  std::optional<double> mean_grain, density, porosity;

  std::optional<std::string> folder;
  std::optional<double> envelope_interval;  ///< s
  std::optional<std::string> final_state;   ///< in the folder
  std::optional<std::string> maxima;        ///< in the folder
  std::optional<std::string> results;       ///< in the folder, in NetCDF
  std::optional<double> arrival_depth;      ///< m

  bool has_sediments() const;
  /// Whether the run advances at all.
  bool has_steps() const { return t0 && tend && *t0 < *tend; }
};

/// Reads the data file and reports keys that are missing, unknown or of the wrong type, and values
/// that no run accepts or that are implausible.
DataFile read_data_file(const std::string& path, Findings& findings);

}  // namespace tools::check
