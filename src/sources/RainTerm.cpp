#include "sources/RainTerm.hpp"

#include "globals/Globals.hpp"
#include "utils/stop.hpp"

RainTerm::RainTerm(int id, int count, int dts)
    : SourceTerm(id, dts),
      times(static_cast<std::size_t>(count)),
      intensities(static_cast<std::size_t>(count)) {}

void RainTerm::read_hyetogram(utils::TextScanner& file, int count) {
  bool is_out_of_order = false;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    times[i] = file.read_number("start time of an interval");
    intensities[i] = file.read_number("intensity");
    is_out_of_order |= i > 0 && times[i] < times[i - 1];
  }
  if (is_out_of_order) {
    utils::warn("hyetogram " + std::to_string(getID()) +
                " has an interval that starts before the one above it: of those that have started, "
                "the last in the file counts.");
  }
}

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
