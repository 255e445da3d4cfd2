// The wall time that the phases of a run take.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>

enum class Phase { set_up, steps, outputs };
inline constexpr std::array<const char*, 3> phase_names = {"set_up_s", "steps_s", "outputs_s"};

class PhaseClock {
 public:
  /// From now on the time counts for this phase; at first for the set-up.
  void enter(Phase phase) {
    const auto now = std::chrono::steady_clock::now();
    seconds_[static_cast<std::size_t>(phase_)] +=
        std::chrono::duration<double>(now - since_).count();
    phase_ = phase;
    since_ = now;
  }
  /// Up to the last change of phase, s.
  const std::array<double, phase_names.size()>& seconds() const { return seconds_; }

 private:
  Phase phase_ = Phase::set_up;
  std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
  std::array<double, phase_names.size()> seconds_{};
};
