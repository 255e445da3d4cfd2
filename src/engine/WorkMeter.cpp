#include "engine/WorkMeter.hpp"

#include <ctime>
#include <utility>

namespace engine {

double seconds_of_thread() {
  std::timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void WorkMeter::begin_work() {
  if (is_measured()) begun_ = seconds_of_thread();
}

void WorkMeter::end_work() {
  if (is_measured()) present_.seconds += seconds_of_thread() - begun_;
}

Work WorkMeter::end_window() {
  const long measured = (steps_ + measured_step - 1) / measured_step;
  if (measured > 0) {
    present_.seconds *= static_cast<double>(steps_) / static_cast<double>(measured);
  }
  steps_ = 0;
  return std::exchange(present_, {});
}

}  // namespace engine
