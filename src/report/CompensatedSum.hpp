// A sum that keeps what rounding would lose.
// Source: Neumaier (1974), Z. angew. Math. Mech. 54.
#pragma once

#include <cmath>

class CompensatedSum {
 public:
  void add(double value) {
    const double sum = sum_ + value;
    lost_ += std::fabs(sum_) >= std::fabs(value) ? (sum_ - sum) + value : (value - sum) + sum_;
    sum_ = sum;
  }
  double value() const { return sum_ + lost_; }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.sum_, self.lost_);
  }

 private:
  double sum_ = 0.0, lost_ = 0.0;
};
