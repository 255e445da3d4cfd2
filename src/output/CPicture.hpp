// Snapshots of the whole flow field at listed times.
#pragma once

#include <string>
#include <vector>

#include "model/PhysicalModel.hpp"

class CPicture {
 public:
  /// Reads the snapshot-times file: count, then the times (s), in increasing order.
  explicit CPicture(const std::string& path);

  /// Whether the next snapshot is due at time t, within a tolerance (s).
  bool CheckTime(double t, double tolerance) const {
    return next_ < times_.size() && t >= times_[next_] - tolerance;
  }
  /// Starts the writer of the next snapshot.
  void WriteMeasure(PhysicalModel* model);

 private:
  std::vector<std::string> names_;
  std::size_t next_ = 0;
  std::vector<double> times_;  ///< s
};
