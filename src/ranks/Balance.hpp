// When the cells of several ranks are worth to be shared out anew.
#pragma once

#include <span>

namespace ranks {

/// Ranks tell now and then for how long their steps kept them busy. All wait for the slowest: what
/// the others lose adds up, and once it is more than it costs to move cells, these are moved, if
/// that gains enough. So moves never take longer than what they are made for has taken, however the
/// flow goes on.
class Balance {
 public:
  static constexpr int steps_between_looks = 64;
  /// Largest over mean time of the ranks from which on cells are worth to be moved.
  static constexpr double imbalance_to_cure = 1.1;

  /// `cost`: of moving cells, s.
  explicit Balance(double cost) : cost_(cost) {}

  /// The ranks were busy for so long since the last look, s.
  void add_look(std::span<const double> seconds);
  /// Whether it is time to think of moving cells.
  bool is_time() const;
  /// The same, if ranks would have been busy for so long (s) in the time of the last look with the
  /// cells that they would get: whether these are worth it. If not, what was lost is forgotten.
  bool pays(std::span<const double> seconds);
  /// Cells were moved, which took so long, s.
  void has_moved(double seconds);

  /// Times of the busiest rank, and means of all, summed up over the looks so far, s.
  double busiest() const { return largest_sum_; }
  double mean() const { return mean_sum_; }
  /// The first over the second; 1 before the first look.
  double imbalance() const { return mean_sum_ > 0.0 ? largest_sum_ / mean_sum_ : 1.0; }

 private:
  double cost_;
  double lost_ = 0.0;                          ///< since cells were moved, s
  double largest_ = 0.0, mean_ = 0.0;          ///< at the last look, s
  double largest_sum_ = 0.0, mean_sum_ = 0.0;  ///< of all looks, s
};

}  // namespace ranks
