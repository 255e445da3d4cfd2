#include "sources/RainTerm.hpp"

#include <algorithm>

#include "case/read_rain.hpp"
#include "globals/Globals.hpp"

RainTerm::RainTerm(int id, int count, int dts)
    : SourceTerm(id, dts),
      times(static_cast<std::size_t>(count)),
      intensities(static_cast<std::size_t>(count)) {}

void RainTerm::read_hyetogram(utils::TextScanner& file, int count) {
  cases::read_intervals(file, count, times, intensities);
}

bool RainTerm::is_in_order() const { return std::is_sorted(times.begin(), times.end()); }

int RainTerm::current_hyetogram_index(double t) const {
  return physics::hyetogram_index_at(hyetogram(), t);
}

void RainTerm::compute_source_term(double t, HydraulicVariableSWE& source, HydraulicVariableSWE&,
                                   ParamCell& param) {
  const physics::RainAddition rain = physics::rain_addition(
      hyetogram(), {param.last_update_time, param.hyetogram_index, param.rain_dt}, t,
      Globals_Params::tStart, Globals_Params::tEnd);
  source.h += rain.depth;
  param.last_update_time = rain.clock.last_update_time;
  param.hyetogram_index = rain.clock.hyetogram_index;
  param.rain_dt = rain.clock.rain_dt;
}
