// The time step over a run, in a bounded number of spans: where they are as many as are kept, each
// two become one, so that a long run is told as finely as a short one.
#pragma once

#include <cstddef>
#include <vector>

class StepCourse {
 public:
  static constexpr std::size_t most_spans = 400;  // an even number

  /// Consecutive steps; the last span may be of fewer.
  struct Span {
    double begin = 0.0;                    ///< s
    double smallest = 0.0, largest = 0.0;  ///< of the steps, s

    template <class Self, class Visit>
    static void visit_parts(Self& self, const Visit& visit) {
      visit(self.begin, self.smallest, self.largest);
    }
  };

  /// A step of dt from t on, s.
  void add(double t, double dt);

  const std::vector<Span>& spans() const { return spans_; }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.spans_, self.steps_per_span_, self.steps_in_last_);
  }

 private:
  void unite_pairs();

  std::vector<Span> spans_;
  long steps_per_span_ = 1, steps_in_last_ = 1;
};
