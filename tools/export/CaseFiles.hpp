// What the data file of a case says about its files.
#pragma once

#include <array>
#include <optional>
#include <string>

namespace exports {

/// Names of files, from the working directory. What a case does not have is empty.
struct CaseFiles {
  /// Reads the data file: a case folder that holds data.json, or the file itself. Its names count
  /// from the folder it is in, which is where the simulator has been run.
  explicit CaseFiles(const std::string& folder_or_data_file);

  /// Name of a result file in the output folder.
  std::string result(const std::string& name) const;
  /// Where exports go unless another place is asked for.
  std::string export_path(const std::string& name) const;

  std::string folder;     ///< of the case
  std::string data_file;  ///< its data file
  std::string title;      ///< name of the run
  bool has_sediment = false;
  bool has_infiltration = false;
  double dry_depth = 0.0;   ///< depth up to which a cell is dry, m
  std::optional<int> epsg;  ///< code of the reference system of the mesh
  std::string epoch;        ///< date and hour of the time 0 s

  std::string nodes, cells, edges;
  std::array<double, 2> origin{};  ///< what was taken from all coordinates, m
  std::optional<std::string> fixed_bed, sediment_thickness;
  std::optional<std::string> snapshot_times, gauges, sections;
  std::optional<std::string> maxima;  ///< the result itself
  std::string output_prefix;          ///< put in front of the names of results
};

}  // namespace exports
