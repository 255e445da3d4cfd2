// What steps cost, and which patches make the work.
#include "engine/WorkMeter.hpp"

#include <gtest/gtest.h>

#include <numeric>

using engine::WorkMeter;

namespace {

/// Keeps the core busy for a while.
double work() {
  volatile double sum = 0.0;
  const double begun = engine::seconds_of_thread();
  while (engine::seconds_of_thread() < begun + 1e-3) sum = sum + 1.0;
  return sum;
}

void step(WorkMeter& meter, const std::vector<int>& patches) {
  meter.begin_work();
  work();
  meter.end_work();
  meter.end_step(patches);
}

}  // namespace

TEST(WorkMeter, MeasuresTheStepsOfAWindow) {
  WorkMeter meter(1);
  step(meter, {0});
  work();  // between steps does not count
  step(meter, {0});
  const double seconds = meter.end_window();
  EXPECT_GE(seconds, 2e-3);
  EXPECT_EQ(meter.end_window(), 0.0);
}

TEST(WorkMeter, SharesTheTimeOutByTheStepsThatPatchesTookPartIn) {
  const std::vector<int> cells = {64, 64, 128, 10};
  WorkMeter meter(cells.size());
  for (int k = 0; k < 4; ++k) step(meter, k == 0 ? std::vector<int>{0, 1, 2} : std::vector<int>{1});
  const double seconds = meter.end_window();
  const std::vector<double> of_cells = meter.seconds_per_cell(cells);
  double sum = 0.0;
  for (std::size_t k = 0; k < cells.size(); ++k) sum += of_cells[k] * cells[k];
  EXPECT_NEAR(sum, seconds, 1e-12);
  EXPECT_EQ(of_cells[0], of_cells[2]);
  EXPECT_GT(of_cells[1], 3.0 * of_cells[0]);
  EXPECT_LT(of_cells[1], 4.0 * of_cells[0]);
  EXPECT_GT(of_cells[3], 0.0);
  EXPECT_LT(of_cells[3], 0.1 * of_cells[0]);
}

TEST(WorkMeter, KnowsNothingOfAWindowWithoutSteps) {
  WorkMeter meter(2);
  meter.end_window();
  EXPECT_EQ(meter.seconds_per_cell({5, 5}), (std::vector<double>{0.0, 0.0}));
}
