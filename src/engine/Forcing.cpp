#include "engine/Forcing.hpp"

#include <map>
#include <utility>

#include "case/boundary_kinds.hpp"

namespace engine {

Forcing::Forcing(const cases::Case& contents, const Tables& tables)
    : case_(contents), soil_steps_(tables.soils.size()) {
  add_series(tables);
  for (const cases::Hyetogram& rain : contents.rain) {
    rain_.push_back(rain.intervals());
    rain_clocks_.push_back(physics::clock_before_rain(contents.t_start));
  }
  rain_depths_.assign(rain_.size() + 1, 0.0);
}

void Forcing::add_series(const Tables& tables) {
  std::map<std::pair<int, bool>, std::size_t> known;
  for (std::size_t b = 0; b < case_.mesh.boundaries.size(); ++b) {
    const cases::Boundary& boundary = case_.mesh.boundaries[b];
    if (boundary.series < 0 || tables.boundary_place[b] < 0) continue;
    const bool is_level = boundary.code == edge_code::limnigraph;
    const auto [entry, is_new] = known.try_emplace({boundary.series, is_level}, series_.size());
    if (is_new) {
      const cases::Series& series = case_.series[at(boundary.series)];
      series_.push_back(
          {{series.times.data(), series.values.data(), static_cast<int>(series.times.size())},
           is_level});
    }
    series_boundaries_.push_back({tables.boundary_place[b], entry->second});
  }
}

void Forcing::begin_step(const StepTimes& times, Tables& tables) {
  set_series(times.t, tables);
  set_rain(times);
  for (std::size_t s = 0; s < tables.soils.size(); ++s) {
    const Soil& soil = tables.soils[s];
    soil_steps_[s] = soil.is_green_ampt ? physics::soil_step(soil.green_ampt, times.dt)
                                        : physics::soil_step(soil.horton, times.dt);
  }
}

void Forcing::save(State& state) const { state.rain_clocks = rain_clocks_; }

void Forcing::load(const State& state) {
  rain_clocks_ = state.rain_clocks;
  for (Series& series : series_) series.interval = 0;
}

void Forcing::set_series(double t, Tables& tables) {
  for (Series& series : series_) {
    // Intended: at the time of a sample a hydrograph is in the interval that starts there, a
    // limnigraph still in the one that ends there.
    series.interval = series.is_level
                          ? physics::interval_that_ends(series.samples, series.interval, t)
                          : physics::interval_that_starts(series.samples, series.interval, t);
    series.value = physics::value_of_series(series.samples, series.interval, t);
  }
  for (const SeriesBoundary& of : series_boundaries_) {
    kernels::BoundaryEdge& boundary = tables.boundaries[at(of.boundary)];
    const Series& series = series_[of.series];
    // Intended: the depth over the bed with its sediments; a fixed water level counts from the
    // rock.
    boundary.imposed =
        series.is_level ? series.value - tables.cells.bed[at(boundary.cell)] : series.value;
  }
}

void Forcing::set_rain(const StepTimes& times) {
  it_rains_ = false;
  for (std::size_t r = 0; r < rain_.size(); ++r) {
    const physics::RainAddition rain =
        physics::rain_addition(rain_[r], rain_clocks_[r], times.t, times.t_start, times.t_end);
    rain_clocks_[r] = rain.clock;
    rain_depths_[r + 1] = rain.depth;
    if (rain.depth != 0.0) it_rains_ = true;
  }
}

}  // namespace engine
