#include "engine/Forcing.hpp"

#include <cmath>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>

#include "case/boundary_kinds.hpp"
#include "physics/hll_boundary.hpp"

namespace engine {

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

}  // namespace

Forcing::Forcing(const cases::Case& contents, const Tables& tables)
    : case_(contents), soil_steps_(tables.soils.size()) {
  add_boundaries(tables);
  for (const cases::Hyetogram& rain : contents.rain) {
    rain_.push_back(rain.intervals());
    rain_clocks_.push_back(physics::clock_before_rain(contents.t_start));
  }
  rain_depths_.assign(rain_.size() + 1, 0.0);
}

void Forcing::add_boundaries(const Tables& tables) {
  std::map<std::pair<int, bool>, int> known;
  for (std::size_t b = 0; b < case_.mesh.boundaries.size(); ++b) {
    const cases::Boundary& boundary = case_.mesh.boundaries[b];
    const int place = tables.boundary_place[b];
    if (place < 0) continue;
    const bool imposes_constant =
        boundary.code == edge_code::discharge || boundary.code == edge_code::water_level;
    if (imposes_constant) imposing_.push_back({b, place, -1});
    if (boundary.series < 0) continue;
    const bool is_level = boundary.code == edge_code::limnigraph;
    const auto [entry, is_new] =
        known.try_emplace({boundary.series, is_level}, static_cast<int>(series_.size()));
    if (is_new) {
      const cases::Series& series = case_.series[at(boundary.series)];
      series_.push_back(
          {{series.times.data(), series.values.data(), static_cast<int>(series.times.size())},
           is_level});
    }
    imposing_.push_back({b, place, entry->second});
  }
}

void Forcing::begin_step(const StepTimes& times, Tables& tables) {
  // The middle of a step makes a scheme of second order so in time, and imposed volumes exact.
  set_series(tables.hll ? times.t + 0.5 * times.dt : times.t, tables);
  set_imposed(tables);
  set_rain(times);
  for (std::size_t s = 0; s < tables.soils.size(); ++s) {
    const Soil& soil = tables.soils[s];
    soil_steps_[s] = soil.is_green_ampt ? physics::soil_step(soil.green_ampt, times.dt)
                                        : physics::soil_step(soil.horton, times.dt);
  }
}

void Forcing::impose_on_boundary(std::size_t boundary, double value) {
  imposed_on_boundaries_.resize(case_.mesh.boundaries.size(), nothing);
  imposed_on_boundaries_[boundary] = value;
}

void Forcing::impose_rain(std::span<const cases::Number> cells, std::span<const double> intensities,
                          Tables& tables) {
  imposed_rain_.resize(at(tables.owned), nothing);
  for (std::size_t i = 0; i < cells.size(); ++i) imposed_rain_[at(cells[i])] = intensities[i];
  place_rain(tables);
}

ForcingTables Forcing::tables(const Tables& tables) const {
  ForcingTables all;
  const auto samples_of = [](std::vector<double>& times, std::vector<double>& values,
                             const double* t, const double* v, int count) {
    const ForcingTables::Samples samples = {static_cast<int>(times.size()), count};
    times.insert(times.end(), t, t + count);
    values.insert(values.end(), v, v + count);
    return samples;
  };
  for (const Series& of : series_) {
    const physics::SampledSeries& s = of.samples;
    all.series.push_back(
        {samples_of(all.sample_times, all.sample_values, s.times, s.values, s.count), of.is_level});
  }
  for (const ImposingBoundary& of : imposing_) {
    const cases::Boundary& of_case = case_.mesh.boundaries[of.number];
    const bool by_caller = is_imposed_on(of);
    const double value = by_caller ? imposed_on_boundaries_[of.number] : of_case.value;
    const int cell = tables.boundaries[at(of.place)].cell;
    all.imposing.push_back({of.place, of.series, by_caller,
                            by_caller ? imposed_by(of_case.code, value, tables, cell) : 0.0,
                            value});
  }
  for (const physics::Hyetogram& of : rain_) {
    all.rains.push_back(
        {samples_of(all.rain_times, all.intensities, of.times, of.intensities, of.count), of.step});
  }
  all.rain_clocks = rain_clocks_;
  all.hyetograms_have_cells = !case_.fields.rain.empty();
  all.steady_rains = steady_rains_;
  return all;
}

void Forcing::save(State& state) const {
  state.rain_clocks = rain_clocks_;
  state.imposed_on_boundaries = imposed_on_boundaries_;
  state.imposed_rain = imposed_rain_;
}

void Forcing::load(const State& state, Tables& tables) {
  rain_clocks_ = state.rain_clocks;
  for (Series& series : series_) series.interval = 0;
  imposed_on_boundaries_ = state.imposed_on_boundaries;
  for (const ImposingBoundary& of : imposing_) {
    const cases::Boundary& of_case = case_.mesh.boundaries[of.number];
    kernels::BoundaryEdge& boundary = tables.boundaries[at(of.place)];
    boundary.imposed = imposed_by(of_case.code, of_case.value, tables, boundary.cell);
  }
  imposed_rain_ = state.imposed_rain;
  place_rain(tables);
}

bool Forcing::is_imposed_on(const ImposingBoundary& boundary) const {
  return !imposed_on_boundaries_.empty() && !std::isnan(imposed_on_boundaries_[boundary.number]);
}

void Forcing::set_imposed(Tables& tables) const {
  for (const ImposingBoundary& of : imposing_) {
    if (!is_imposed_on(of)) continue;
    kernels::BoundaryEdge& boundary = tables.boundaries[at(of.place)];
    boundary.imposed = imposed_by(case_.mesh.boundaries[of.number].code,
                                  imposed_on_boundaries_[of.number], tables, boundary.cell);
  }
}

/// Gives every cell the number of its rain.
void Forcing::place_rain(Tables& tables) {
  const std::vector<int>& of_case = case_.fields.rain;
  AlignedVector<int>& rain = tables.cells.rain;
  const bool any_rain = !of_case.empty() || !imposed_rain_.empty();
  rain.resize(any_rain ? tables.cells.h.size() : 0);
  steady_rains_.clear();
  std::unordered_map<double, int> numbers;
  for (std::size_t cell = 0; any_rain && cell < tables.place.size(); ++cell) {
    int& number = rain[at(tables.place[cell])];
    const double imposed = cell < imposed_rain_.size() ? imposed_rain_[cell] : nothing;
    if (std::isnan(imposed)) {
      number = of_case.empty() ? 0 : of_case[cell] + 1;
      continue;
    }
    const auto first_free = static_cast<int>(1 + rain_.size() + steady_rains_.size());
    const auto [known, is_new] = numbers.try_emplace(imposed, first_free);
    if (is_new) steady_rains_.push_back(imposed);
    number = known->second;
  }
  rain_depths_.assign(1 + rain_.size() + steady_rains_.size(), 0.0);
}

void Forcing::set_series(double t, Tables& tables) {
  for (Series& series : series_) {
    // Intended: at the time of a sample a hydrograph is in the interval that starts there, a
    // limnigraph still in the one that ends there. The HLL schemes know the former alone.
    series.interval = series.is_level && !tables.hll
                          ? physics::interval_that_ends(series.samples, series.interval, t)
                          : physics::interval_that_starts(series.samples, series.interval, t);
    series.value = physics::value_of_series(series.samples, series.interval, t);
  }
  for (const ImposingBoundary& of : imposing_) {
    if (of.series < 0) continue;
    kernels::BoundaryEdge& boundary = tables.boundaries[at(of.place)];
    const Series& series = series_[at(of.series)];
    // Intended: the depth over the bed with its sediments; a fixed water level counts from the
    // rock.
    const bool is_depth = series.is_level && !tables.hll;
    boundary.imposed = is_depth ? series.value - tables.cells.bed[at(boundary.cell)] : series.value;
  }
}

BoundaryBound Forcing::boundary_bound(double t, const Tables& tables, int before) {
  for (Series& series : series_) {
    const int interval = physics::interval_that_starts(series.samples, series.interval, t);
    series.value_at_end = physics::value_of_series(series.samples, interval, t);
  }
  BoundaryBound bound;
  for (const ImposingBoundary& of : imposing_) {
    const kernels::BoundaryEdge& boundary = tables.boundaries[at(of.place)];
    const std::size_t cell = at(boundary.cell);
    const double of_case = of.series < 0 ? case_.mesh.boundaries[of.number].value
                                         : series_[at(of.series)].value_at_end;
    const double imposed = is_imposed_on(of) ? imposed_on_boundaries_[of.number] : of_case;
    const double speed = boundary.kind == kernels::BoundaryKind::discharge
                             ? physics::wave_speed_of_discharge(imposed)
                             : physics::wave_speed_of_level(imposed, tables.cells.bed[cell]);
    const double rate = speed / tables.cells.char_length[cell];
    const bool is_larger = rate > bound.crossing_rate;
    const bool is_same = rate == bound.crossing_rate && rate > 0.0 && boundary.cell == before;
    if (is_larger || is_same) bound = {rate, boundary.cell};
  }
  return bound;
}

void Forcing::set_rain(const StepTimes& times) {
  it_rains_ = false;
  for (std::size_t r = 0; r < rain_.size(); ++r) {
    const physics::RainAddition rain =
        physics::rain_addition(rain_[r], rain_clocks_[r], times.t, times.t_start, times.t_end);
    rain_clocks_[r] = rain.clock;
    rain_depths_[r + 1] = rain.depth;
    // Rain that no cell names changes nothing.
    if (rain.depth != 0.0 && !case_.fields.rain.empty()) it_rains_ = true;
  }
  for (std::size_t s = 0; s < steady_rains_.size(); ++s) {
    const double depth = physics::steady_rain(steady_rains_[s], times.dt);
    rain_depths_[1 + rain_.size() + s] = depth;
    if (depth != 0.0) it_rains_ = true;
  }
}

}  // namespace engine
