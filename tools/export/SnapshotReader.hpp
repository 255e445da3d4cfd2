// Snapshots, one at a time.
#pragma once

#include "export/CaseResults.hpp"
#include "export/below_zero.hpp"
#include "fields/Columns.hpp"

namespace exports {

struct Snapshot {
  double time = 0.0;        ///< s
  BelowZero below_zero;     ///< the most that any snapshot read so far had
  fields::Columns columns;  ///< of the fields that the snapshots of the case hold
};

/// Reads a file of the case into `snapshot`, whose memory is used again; depths below zero become
/// zero. Refuses a file whose header, number of rows or centres are not those of the case.
void read_snapshot(const CaseResults& results, const SnapshotFile& file, Snapshot& snapshot);

}  // namespace exports
