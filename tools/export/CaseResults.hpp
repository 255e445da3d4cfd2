// A case with its mesh and bed, and which of its results are there.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "export/CaseFiles.hpp"
#include "export/Mesh.hpp"
#include "export/below_zero.hpp"
#include "export/run_log.hpp"

namespace exports {

struct SnapshotFile {
  double time;  ///< s
  std::string name;
};

struct CaseResults {
  /// Warns of results of an earlier run, which count as not there.
  explicit CaseResults(const std::string& folder_or_data_file);

  std::string envelope_file() const { return files.result("enveloppe.txt"); }
  /// Whether the last run has written it.
  bool has_envelope() const;

  /// Bed at the nodes, m: their own elevation, or where a bed file or sediment replaces it, the
  /// mean of the cells around.
  std::vector<double> node_bed() const;
  /// Largest depths of the cells (m) from the envelope; none if the last run has written none.
  /// Depths below zero become zero, of which `below_zero` is told.
  std::optional<std::vector<double>> max_depth(BelowZero* below_zero = nullptr) const;
  /// Whether the last run has written the maxima of the flow.
  bool has_maxima() const;
  /// The snapshot for a time, or the last one; refuses when there is none, and says which there
  /// are.
  const SnapshotFile& snapshot_at(std::optional<double> time) const;

  CaseFiles files;
  RunLog log;
  Mesh mesh;
  /// Bed of the cells at the start, m: of the bed file or else the mean of the nodes, and the
  /// sediment upon it. Snapshots without sediment do not tell a bed file's level.
  std::vector<double> bed;
  std::vector<SnapshotFile> snapshots;         ///< those that are there, in the order of time
  std::vector<std::string> missing_snapshots;  ///< names of those that are not there (yet)
  std::vector<std::string> earlier_results;    ///< left out: the last run has not replaced them

 private:
  void find_snapshots();
};

}  // namespace exports
