#include "engine/WorkMeter.hpp"

#include <ctime>
#include <utility>

#include "engine/aligned_vector.hpp"

namespace engine {

double seconds_of_thread() {
  std::timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

WorkMeter::WorkMeter(std::size_t patches) {
  present_.steps_of_patches.assign(patches, 0);
  last_.steps_of_patches.assign(patches, 0);
}

void WorkMeter::begin_work() {
  if (is_measured()) begun_ = seconds_of_thread();
}

void WorkMeter::end_work() {
  if (is_measured()) present_.seconds += seconds_of_thread() - begun_;
}

void WorkMeter::end_step(const std::vector<int>& patches) {
  ++present_.steps;
  for (const int patch : patches) ++present_.steps_of_patches[at(patch)];
}

double WorkMeter::end_window() {
  std::swap(present_, last_);
  const long measured = (last_.steps + measured_step - 1) / measured_step;
  if (measured > 0)
    last_.seconds *= static_cast<double>(last_.steps) / static_cast<double>(measured);
  present_.seconds = 0.0;
  present_.steps = 0;
  present_.steps_of_patches.assign(present_.steps_of_patches.size(), 0);
  return last_.seconds;
}

std::vector<double> WorkMeter::seconds_per_cell(const std::vector<int>& cells) const {
  constexpr double of_rest = 0.02;  // of the time of a cell that is computed
  std::vector<double> costs;
  double sum = 0.0;
  for (std::size_t patch = 0; patch < cells.size(); ++patch) {
    const auto steps = static_cast<double>(last_.steps_of_patches[patch]);
    const double all_steps = static_cast<double>(last_.steps);
    costs.push_back(steps + of_rest * (all_steps - steps));
    sum += costs.back() * cells[patch];
  }
  if (!(sum > 0.0)) return std::vector<double>(cells.size(), 0.0);
  for (double& cost : costs) cost *= last_.seconds / sum;
  return costs;
}

}  // namespace engine
