#include "engine/Forcing.hpp"

#include <utility>

namespace engine {

Forcing::Forcing(std::vector<RainInput>&& rain, std::size_t soils)
    : rain_(std::move(rain)), rain_depths_(rain_.size() + 1, 0.0), soil_steps_(soils) {}

void Forcing::begin_step(const StepTimes& times, const std::vector<Soil>& soils) {
  it_rains_ = false;
  for (std::size_t r = 0; r < rain_.size(); ++r) {
    const physics::RainAddition rain = physics::rain_addition(rain_[r].hyetogram, rain_[r].clock,
                                                              times.t, times.t_start, times.t_end);
    rain_[r].clock = rain.clock;
    rain_depths_[r + 1] = rain.depth;
    if (rain.depth != 0.0) it_rains_ = true;
  }
  for (std::size_t s = 0; s < soils.size(); ++s) {
    soil_steps_[s] = soils[s].is_green_ampt ? physics::soil_step(soils[s].green_ampt, times.dt)
                                            : physics::soil_step(soils[s].horton, times.dt);
  }
}

}  // namespace engine
