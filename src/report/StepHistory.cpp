#include "report/StepHistory.hpp"

#include <algorithm>

void StepHistory::add(const StepRecord& step) {
  last_[static_cast<std::size_t>(count_) % steps_kept] = step;
  if (count_ == 0 || step.dt < smallest_.dt) smallest_ = step;
  largest_ = std::max(largest_, step.dt);
  sum_ += step.dt;
  course_.add(step.t, step.dt);
  if (step.cell >= 0) {
    ++set_by_[step.cell];
  } else {
    ++set_by_dry_cells_;
  }
  ++count_;
}

double StepHistory::newest() const {
  return count_ > 0 ? last_[static_cast<std::size_t>(count_ - 1) % steps_kept].dt : 0.0;
}

double StepHistory::mean() const { return count_ > 0 ? sum_ / static_cast<double>(count_) : 0.0; }

std::vector<StepHistory::CellCount> StepHistory::most_frequent() const {
  std::vector<CellCount> cells;
  for (const auto& [cell, steps] : set_by_) cells.push_back({cell, steps});
  const auto more_often = [](const CellCount& a, const CellCount& b) {
    return a.steps != b.steps ? a.steps > b.steps : a.cell < b.cell;
  };
  const std::size_t listed = std::min(cells.size(), cells_listed);
  std::partial_sort(cells.begin(), cells.begin() + static_cast<std::ptrdiff_t>(listed), cells.end(),
                    more_often);
  cells.resize(listed);
  return cells;
}

std::vector<StepRecord> StepHistory::last() const {
  std::vector<StepRecord> steps;
  for (long k = std::max(0L, count_ - static_cast<long>(steps_kept)); k < count_; ++k) {
    steps.push_back(last_[static_cast<std::size_t>(k) % steps_kept]);
  }
  return steps;
}
