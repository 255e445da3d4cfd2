// When the cells of several ranks are worth to be shared out anew.
#pragma once

#include <span>

#include "engine/WorkMeter.hpp"

namespace ranks {

/// The largest value of any rank, and the mean of all, summed up over looks.
struct Uneven {
  double largest = 0.0, mean = 0.0;

  /// The first over the second; 1 where there is nothing.
  double imbalance() const { return mean > 0.0 ? largest / mean : 1.0; }
  void add(const Uneven& more) {
    largest += more.largest;
    mean += more.mean;
  }
};

/// Ranks tell now and then what they have done. All wait for the slowest: what the others lose adds
/// up, and once it is more than it costs to move cells, these are moved, if that gains enough. So
/// but for the first, before the first step, moves never take longer than what they are made for
/// has taken, however the flow goes on. What is lost follows from the cells that ranks compute:
/// times tell as well of machines that differ, and of what else runs there, which no move would
/// change.
class Balance {
 public:
  static constexpr int steps_between_looks = 64;
  /// Largest over mean work of the ranks from which on cells are worth to be moved.
  static constexpr double imbalance_to_cure = 1.1;

  /// `cost`: of moving cells, s.
  explicit Balance(double cost) : cost_(cost) {}

  /// What the ranks have done since the last look.
  void add_look(std::span<const engine::Work> of_ranks);
  /// Whether it is time to think of moving cells.
  bool is_time() const;
  /// Whether it is worth to move cells, by the imbalance that would be left. If not, what was lost
  /// is forgotten.
  bool pays(double imbalance_before, double imbalance);
  /// Cells were moved, which took so long, s.
  void has_moved(double seconds);

  /// Of the time that the ranks were busy, s, and of the cells that they computed.
  const Uneven& seconds() const { return seconds_; }
  const Uneven& cells() const { return cells_; }
  /// Time that moves took the busiest rank, s.
  double moving() const { return moving_; }

 private:
  double cost_;
  double lost_ = 0.0;  ///< since cells were moved, s
  double last_ = 1.0;  ///< imbalance of the cells at the last look
  double moving_ = 0.0;
  Uneven seconds_, cells_;  ///< of all looks
};

}  // namespace ranks
