// The whole flow at one time, as a table.
#pragma once

#include <string>
#include <vector>

#include "case/Case.hpp"
#include "fields/Flow.hpp"
#include "fields/snapshot_columns.hpp"

class Snapshot {
 public:
  /// The mesh must outlive the snapshot.
  explicit Snapshot(const cases::Case& contents);

  /// Takes the present flow.
  void gather(const fields::Flow& flow);
  /// Writes what was gathered last; false if the run must end, which has been said.
  bool write(const std::string& name) const;

 private:
  const cases::Mesh& mesh_;
  fields::SnapshotColumns columns_;
  std::vector<double> values_;  ///< of the first field, of the second, ...
};
