// What time brings to the steps, in the memory of a device. Machine is the device: Emulator, say.
#pragma once

#include <vector>

#include "engine/ForcingTables.hpp"
#include "engine/device/BeginStep.hpp"

namespace engine::device {

template <class Machine>
class DeviceForcing {
 public:
  void take(const ForcingTables& forcing, std::size_t soils) {
    sample_times_.take(forcing.sample_times);
    sample_values_.take(forcing.sample_values);
    series_.take(forcing.series);
    imposing_.take(forcing.imposing);
    rain_times_.take(forcing.rain_times);
    intensities_.take(forcing.intensities);
    rains_.take(forcing.rains);
    rain_clocks_.take(forcing.rain_clocks);
    steady_rains_.take(forcing.steady_rains);
    hyetograms_have_cells_ = forcing.hyetograms_have_cells;
    // No rain has the number 0, and brings nothing.
    rain_depths_.take(
        std::vector<double>(1 + forcing.rains.size() + forcing.steady_rains.size(), 0.0));
    soil_steps_.resize(soils);
  }
  void give_rain_clocks(std::vector<physics::RainClock>& clocks) const {
    rain_clocks_.give(clocks);
  }

  ForcingView view() const {
    return {.sample_times = sample_times_.data(),
            .sample_values = sample_values_.data(),
            .series = series_.data(),
            .imposing = imposing_.data(),
            .imposing_count = static_cast<int>(imposing_.size()),
            .rain_times = rain_times_.data(),
            .intensities = intensities_.data(),
            .rains = rains_.data(),
            .rain_clocks = rain_clocks_.data(),
            .steady_rains = steady_rains_.data(),
            .rain_count = static_cast<int>(rains_.size()),
            .steady_count = static_cast<int>(steady_rains_.size()),
            .hyetograms_have_cells = hyetograms_have_cells_,
            .rain_depths = rain_depths_.data(),
            .soil_steps = soil_steps_.data(),
            .soil_count = static_cast<int>(soil_steps_.size())};
  }

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;

  Array<double> sample_times_, sample_values_, rain_times_, intensities_, steady_rains_;
  Array<ForcingTables::Series> series_;
  Array<ForcingTables::Imposing> imposing_;
  Array<ForcingTables::Rain> rains_;
  Array<physics::RainClock> rain_clocks_;
  Array<double> rain_depths_;
  Array<physics::SoilStep> soil_steps_;
  bool hyetograms_have_cells_ = false;
};

}  // namespace engine::device
