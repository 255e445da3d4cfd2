#include "model/HllForcing.hpp"

#include "physics/time_series.hpp"

namespace {

using cases::at;

physics::Infiltration demand_of(const physics::GreenAmptSoil& soil, const physics::SoilStep& step,
                                double h, double F) {
  return physics::infiltration_green_ampt(soil, step, h, F, 0.0);
}
physics::Infiltration demand_of(const physics::HortonSoil& soil, const physics::SoilStep& step,
                                double h, double F) {
  return physics::infiltration_horton(soil, step, h, F, 0.0);
}

}  // namespace

HllForcing::HllForcing(const cases::Case& contents)
    : case_(contents),
      rain_clocks_(contents.rain.size(), physics::clock_before_rain(contents.t_start)),
      rain_depths_(contents.rain.size()),
      soil_steps_(contents.soils.size()) {}

void HllForcing::begin_step(double t, double dt) {
  for (std::size_t r = 0; r < rain_depths_.size(); ++r) {
    const physics::RainAddition rain = physics::rain_addition(
        case_.rain[r].intervals(), rain_clocks_[r], t, case_.t_start, case_.t_end);
    rain_clocks_[r] = rain.clock;
    rain_depths_[r] = rain.depth;
  }
  for (std::size_t s = 0; s < soil_steps_.size(); ++s) {
    soil_steps_[s] = std::visit([&](const auto& p) { return physics::soil_step(p.soil(), dt); },
                                case_.soils[s].parameters);
  }
}

double HllForcing::rain_on(cases::Number cell) const {
  if (case_.fields.rain.empty()) return 0.0;
  const int hyetogram = case_.fields.rain[at(cell)];
  return hyetogram < 0 ? 0.0 : rain_depths_[at(hyetogram)];
}

physics::Infiltration HllForcing::infiltration(cases::Number cell, double h, double F) const {
  if (case_.has_sediments) return {0.0, F};  // a bed of sediments lets no water in
  const int soil = case_.fields.soil.empty() ? -1 : case_.fields.soil[at(cell)];
  if (soil < 0) return {0.0, F};
  return std::visit([&](const auto& p) { return demand_of(p.soil(), soil_steps_[at(soil)], h, F); },
                    case_.soils[at(soil)].parameters);
}

double HllForcing::imposed_by(const cases::Boundary& boundary, double t) const {
  if (boundary.series < 0) return boundary.value;
  const cases::Series& series = case_.series[at(boundary.series)];
  const physics::SampledSeries samples = {series.times.data(), series.values.data(),
                                          static_cast<int>(series.times.size())};
  return physics::value_of_series(samples, physics::interval_that_starts(samples, 0, t), t);
}
