// A case with its mesh and bed, and which of its results are there.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "export/CaseFiles.hpp"
#include "export/Mesh.hpp"

namespace exports {

struct SnapshotFile {
  double time;  ///< s
  std::string name;
};

struct CaseResults {
  explicit CaseResults(const std::string& folder_or_data_file);

  /// Bed at the nodes, m: their own elevation, or where a bed file or sediment replaces it, the
  /// mean of the cells around.
  std::vector<double> node_bed() const;
  /// Largest depths of the cells (m) from the envelope; none if there is no envelope.
  std::optional<std::vector<float>> max_depth() const;
  /// The snapshot for a time, or the last one; refuses when there is none, and says which there
  /// are.
  const SnapshotFile& snapshot_at(std::optional<double> time) const;

  CaseFiles files;
  Mesh mesh;
  /// Bed of the cells at the start, m: of the bed file or else the mean of the nodes, and the
  /// sediment upon it. Snapshots without sediment do not tell a bed file's level.
  std::vector<double> bed;
  std::vector<SnapshotFile> snapshots;         ///< those that are there, in the order of time
  std::vector<std::string> missing_snapshots;  ///< names of those that are not there (yet)
};

}  // namespace exports
