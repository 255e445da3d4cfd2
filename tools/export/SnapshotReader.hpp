// Snapshots, one at a time.
#pragma once

#include <vector>

#include "export/CaseResults.hpp"

namespace exports {

/// One value per cell in every column; a column that the model does not write is empty. Six
/// significant digits survive in a float.
struct Snapshot {
  double time = 0.0;                ///< s
  std::vector<float> bed;           ///< m, with sediment alone
  std::vector<float> h;             ///< depth, m
  std::vector<float> qx, qy;        ///< unit discharge, m2/s
  std::vector<float> infiltrated;   ///< depth of infiltrated water, m, with infiltration alone
  std::vector<float> hs, qsx, qsy;  ///< thickness (m) and unit discharge (m2/s) of the sediment
};

/// Reads a file of the case into `snapshot`, whose memory is used again. Refuses a file whose
/// header, number of rows or centres are not those of the case.
void read_snapshot(const CaseResults& results, const SnapshotFile& file, Snapshot& snapshot);

}  // namespace exports
