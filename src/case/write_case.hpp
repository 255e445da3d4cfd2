// Writes a case in the files that its readers read.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "case/Case.hpp"

namespace cases {

/// What a run is called, and what it is to write. What is not asked for is empty.
struct RunRequest {
  std::string name;
  std::string output_folder;                 ///< put in front of the names of results
  double envelope_interval = 0.0;            ///< s
  std::optional<physics::PlanPoint> origin;  ///< what was taken from all coordinates, m
  std::optional<std::string> final_state;    ///< file, in the folder of the results
  std::optional<MaximaRequest> maxima;
  std::optional<SnapshotRequest> snapshots;
  std::optional<GaugeRequest> gauges;
  std::optional<SectionRequest> sections;
  std::optional<int> epsg = {};  ///< code of the reference system of the mesh
  std::string epoch = {};        ///< date and hour of the time 0 s, UTC
};

// Names of files of a case that is written.
inline constexpr char data_file_name[] = "data.json";
inline constexpr char rain_file_name[] = "rain.txt";
inline constexpr char soils_file_name[] = "soils.txt";

/// Takes the name of a file, in the folder of the case, and its text.
using FileSink = std::function<void(const std::string& name, const std::string& text)>;

/// Gives the files of a case to `sink`, the data file last: before it is there, no case can run.
/// Every number reads back to the same bits; time series keep the names of their files.
void write_case(const Case& contents, const RunRequest& run, const FileSink& sink);

}  // namespace cases
