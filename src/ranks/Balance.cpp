#include "ranks/Balance.hpp"

#include <algorithm>

namespace ranks {

namespace {

Uneven uneven(std::span<const engine::Work> of_ranks, double engine::Work::*part) {
  Uneven found;
  for (const engine::Work& work : of_ranks) {
    found.largest = std::max(found.largest, work.*part);
    found.mean += work.*part / static_cast<double>(of_ranks.size());
  }
  return found;
}

}  // namespace

void Balance::add_look(std::span<const engine::Work> of_ranks) {
  const Uneven seconds = uneven(of_ranks, &engine::Work::seconds);
  const Uneven cells = uneven(of_ranks, &engine::Work::cells);
  seconds_.add(seconds);
  cells_.add(cells);
  last_ = cells.imbalance();
  lost_ += (last_ - 1.0) * seconds.mean;
}

bool Balance::is_time() const { return last_ > imbalance_to_cure && lost_ > cost_; }

bool Balance::pays(double imbalance_before, double imbalance) {
  constexpr double worth = 0.5;  // of what is lost
  const bool pays = imbalance_before > imbalance_to_cure &&
                    imbalance_before - imbalance >= worth * (imbalance_before - 1.0);
  if (!pays) lost_ = 0.0;
  return pays;
}

void Balance::has_moved(double seconds) {
  cost_ = seconds;
  moving_ += seconds;
  lost_ = 0.0;
}

}  // namespace ranks
