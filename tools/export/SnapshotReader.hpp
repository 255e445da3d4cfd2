// Snapshots, one at a time.
#pragma once

#include <array>
#include <vector>

#include "export/CaseResults.hpp"
#include "export/below_zero.hpp"
#include "fields/Field.hpp"

namespace exports {

/// One value per cell in every column. Six significant digits survive in a float.
struct Snapshot {
  /// The values of a field; empty where the snapshots of the case do not hold it.
  const std::vector<float>& operator[](fields::Field field) const {
    return columns[static_cast<std::size_t>(field)];
  }
  std::vector<float>& operator[](fields::Field field) {
    return columns[static_cast<std::size_t>(field)];
  }

  double time = 0.0;     ///< s
  BelowZero below_zero;  ///< the most that any snapshot read so far had
  std::array<std::vector<float>, fields::field_table.size()> columns;
};

/// Reads a file of the case into `snapshot`, whose memory is used again; depths below zero become
/// zero. Refuses a file whose
/// header, number of rows or centres are not those of the case.
void read_snapshot(const CaseResults& results, const SnapshotFile& file, Snapshot& snapshot);

}  // namespace exports
