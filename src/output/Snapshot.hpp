// The whole flow at one time, as a table.
#pragma once

#include <string>

#include "case/Case.hpp"
#include "fields/snapshot_columns.hpp"
#include "output/GatheredFields.hpp"

class Snapshot {
 public:
  /// The mesh must outlive the snapshot.
  explicit Snapshot(const cases::Case& contents);

  /// Takes the present flow.
  void gather(const fields::Flow& flow) { values_.gather(flow); }
  /// Writes what was gathered last; false if the run must end, which has been said.
  bool write(const std::string& name);
  /// Lets a writer do so.
  void hand_over(utils::WriterThread& writer, const std::string& name);

 private:
  fields::SnapshotColumns columns_;
  GatheredFields values_;  ///< of the columns
};
