// What steps cost.
#include "engine/WorkMeter.hpp"

#include <gtest/gtest.h>

using engine::WorkMeter;

namespace {

/// Keeps the core busy for a while.
double work() {
  volatile double sum = 0.0;
  const double begun = engine::seconds_of_thread();
  while (engine::seconds_of_thread() < begun + 1e-3) sum = sum + 1.0;
  return sum;
}

void step(WorkMeter& meter) {
  meter.begin_work();
  work();
  meter.end_work();
  meter.end_step(7);
}

}  // namespace

TEST(WorkMeter, MeasuresTheStepsOfAWindow) {
  WorkMeter meter;
  step(meter);
  ::work();  // between steps does not count
  step(meter);
  const engine::Work work = meter.end_window();
  EXPECT_GE(work.seconds, 2e-3);
  EXPECT_EQ(work.cells, 14.0);
  EXPECT_EQ(meter.end_window().seconds, 0.0);
  EXPECT_EQ(meter.end_window().cells, 0.0);
}
