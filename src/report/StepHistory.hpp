// The steps of a run: how many, the smallest, their course, the cells that set most of them, and
// the last ones.
#pragma once

#include <array>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "fields/Flow.hpp"
#include "report/StepCourse.hpp"

/// A step, and the state that set it.
struct StepRecord {
  double t = 0.0, dt = 0.0;      ///< of the clock, and the step from there on, s
  int cell = -1;                 ///< whose wave set it; -1: dry cells did, or nothing
  fields::CellState state = {};  ///< of the cell

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.t, self.dt, self.cell, self.state);
  }
};

class StepHistory {
 public:
  static constexpr std::size_t steps_kept = 50;
  static constexpr std::size_t cells_listed = 10;

  struct CellCount {
    int cell;
    long steps;
  };

  void add(const StepRecord& step);

  /// How many steps were set; the last of them has not been computed.
  long count() const { return count_; }
  long set_by_dry_cells() const { return set_by_dry_cells_; }
  const StepRecord& smallest() const { return smallest_; }
  double largest() const { return largest_; }  ///< s
  double newest() const;                       ///< s
  double mean() const;                         ///< s
  const StepCourse& course() const { return course_; }
  /// The cells that set most steps, most often first.
  std::vector<CellCount> most_frequent() const;
  /// The last steps, the newest at the end.
  std::vector<StepRecord> last() const;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.last_, self.count_, self.set_by_dry_cells_, self.smallest_, self.largest_, self.sum_,
          self.course_);
    std::vector<std::pair<int, long>> set_by(self.set_by_.begin(), self.set_by_.end());
    visit(set_by);
    if constexpr (!std::is_const_v<Self>) self.set_by_ = {set_by.begin(), set_by.end()};
  }

 private:
  std::array<StepRecord, steps_kept> last_{};
  long count_ = 0;
  long set_by_dry_cells_ = 0;
  StepRecord smallest_{};
  double largest_ = 0.0, sum_ = 0.0;  ///< s
  StepCourse course_;
  std::unordered_map<int, long> set_by_;  ///< steps by cell
};
