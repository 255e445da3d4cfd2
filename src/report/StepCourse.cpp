#include "report/StepCourse.hpp"

#include <algorithm>

void StepCourse::add(double t, double dt) {
  if (!spans_.empty() && steps_in_last_ < steps_per_span_) {
    Span& last = spans_.back();
    last.smallest = std::min(last.smallest, dt);
    last.largest = std::max(last.largest, dt);
    ++steps_in_last_;
    return;
  }
  if (spans_.size() >= most_spans) unite_pairs();
  spans_.push_back({t, dt, dt});
  steps_in_last_ = 1;
}

void StepCourse::unite_pairs() {
  const std::size_t half = spans_.size() / 2;
  for (std::size_t k = 0; k < half; ++k) {
    const Span &a = spans_[2 * k], &b = spans_[2 * k + 1];
    spans_[k] = {a.begin, std::min(a.smallest, b.smallest), std::max(a.largest, b.largest)};
  }
  spans_.resize(half);
  steps_per_span_ *= 2;
}
