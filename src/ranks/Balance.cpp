#include "ranks/Balance.hpp"

#include <algorithm>
#include <numeric>

namespace ranks {

void Balance::add_look(std::span<const double> seconds) {
  largest_ = *std::max_element(seconds.begin(), seconds.end());
  mean_ =
      std::accumulate(seconds.begin(), seconds.end(), 0.0) / static_cast<double>(seconds.size());
  lost_ += largest_ - mean_;
  largest_sum_ += largest_;
  mean_sum_ += mean_;
}

bool Balance::is_time() const { return largest_ > imbalance_to_cure * mean_ && lost_ > cost_; }

bool Balance::pays(std::span<const double> seconds) {
  constexpr double worth = 0.5;  // of what is lost
  const double largest = *std::max_element(seconds.begin(), seconds.end());
  const bool pays = largest_ - largest >= worth * (largest_ - mean_);
  if (!pays) lost_ = 0.0;
  return pays;
}

void Balance::has_moved(double seconds) {
  cost_ = seconds;
  lost_ = 0.0;
}

}  // namespace ranks
