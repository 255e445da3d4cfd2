// What time brings to a step: rain, and what the step means to every soil.
#pragma once

#include <cstddef>
#include <vector>

#include "engine/ModelInput.hpp"

namespace engine {

/// Clock of a step: time and span of the run, and the step (s).
struct StepTimes {
  double t, t_start, t_end, dt;
};

class Forcing {
 public:
  Forcing(std::vector<RainInput>&& rain, std::size_t soils);

  void begin_step(const StepTimes& times, const std::vector<Soil>& soils);
  bool it_rains() const { return it_rains_; }
  /// Depths of the step by number of hyetogram, m; null: it does not rain.
  const double* rain_depths() const { return it_rains_ ? rain_depths_.data() : nullptr; }
  /// By number of soil.
  const std::vector<physics::SoilStep>& soil_steps() const { return soil_steps_; }

 private:
  std::vector<RainInput> rain_;
  Column rain_depths_;
  bool it_rains_ = false;
  std::vector<physics::SoilStep> soil_steps_;
};

}  // namespace engine
