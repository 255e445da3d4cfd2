#include "checkpoint/inputs.hpp"

#include <algorithm>
#include <variant>

#include "utils/Checksum.hpp"

namespace checkpoint {

namespace {

/// The checksum of plain values and of vectors of them.
template <class... Values>
std::uint64_t sum_of(const Values&... values) {
  utils::Checksum sum;
  const auto add = [&](const auto& value) {
    if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>) {
      sum.add(&value, sizeof value);
    } else {
      sum.add_values(value);
    }
  };
  (add(values), ...);
  return sum.value();
}

std::uint64_t sum_of_series(const cases::Case& contents, std::uint64_t of_boundaries) {
  utils::Checksum sum;
  sum.add(&of_boundaries, sizeof of_boundaries);
  for (const cases::Series& series : contents.series) {
    sum.add_values(series.times);
    sum.add_values(series.values);
  }
  return sum.value();
}

std::uint64_t sum_of(const cases::Hyetogram& rain) {
  return sum_of(rain.step, rain.times, rain.intensities);
}

std::uint64_t sum_of_rain(const cases::Case& contents, std::uint64_t of_cells) {
  utils::Checksum sum;
  sum.add(&of_cells, sizeof of_cells);
  for (const cases::Hyetogram& rain : contents.rain) {
    const std::uint64_t of = sum_of(rain);
    sum.add(&rain.id, sizeof rain.id);
    sum.add(&of, sizeof of);
  }
  return sum.value();
}

std::uint64_t sum_of(const cases::GreenAmptParameters& soil) {
  return sum_of(soil.Ks, soil.psi, soil.theta_i, soil.theta_s, soil.L, soil.kr);
}

std::uint64_t sum_of(const cases::HortonParameters& soil) {
  return sum_of(soil.f0, soil.fc, soil.k, soil.Fmax, soil.kr);
}

std::uint64_t sum_of_soils(const cases::Case& contents, std::uint64_t of_cells) {
  utils::Checksum sum;
  sum.add(&of_cells, sizeof of_cells);
  for (const cases::Soil& soil : contents.soils) {
    const std::uint64_t kind = soil.parameters.index();
    const std::uint64_t of = std::visit([](const auto& p) { return sum_of(p); }, soil.parameters);
    sum.add(&kind, sizeof kind);
    sum.add(&of, sizeof of);
  }
  return sum.value();
}

}  // namespace

std::vector<Input> inputs_of(const cases::Case& contents, const cases::InputSums& sums,
                             const std::string& version) {
  const cases::SedimentParameters& sand = contents.sediment;
  utils::Checksum of_version;
  of_version.add(version.data(), version.size());
  constexpr bool may_change = true;
  return {
      {"the version of the program", of_version.value()},
      {"the model", sum_of(contents.has_sediments)},
      {"the flux scheme", sum_of(static_cast<int>(contents.scheme))},
      {"the start time", sum_of(contents.t_start)},
      {"the Courant number", sum_of(contents.cfl)},
      {"the depth up to which a cell is dry", sum_of(contents.zero_depth)},
      {"the nodes of the mesh", sums.nodes},
      {"the cells of the mesh", sums.cells},
      {"the edges of the mesh", sums.edges},
      {"the boundary conditions", sums.boundaries},
      {"the initial conditions", sums.initial},
      {"the bed", sums.bed},
      {"the friction", sums.friction},
      {"the soils", sum_of_soils(contents, sums.soils)},
      {"the initial sediments", sums.sediment},
      {"the parameters of the sediments",
       sum_of(sand.d50, sand.density, sand.manning, sand.porosity)},
      {"the end time", sum_of(contents.t_end), may_change},
      {"the boundary series", sum_of_series(contents, sums.boundary_series), may_change},
      {"the rain", sum_of_rain(contents, sums.rain), may_change},
  };
}

Changes changes_between(const std::vector<Input>& before, const std::vector<Input>& now) {
  Changes changes;
  for (const Input& input : now) {
    const bool is_same = std::any_of(before.begin(), before.end(), [&](const Input& other) {
      return other.name == input.name && other.checksum == input.checksum;
    });
    if (!is_same) (input.may_change ? changes.allowed : changes.refused).push_back(input.name);
  }
  return changes;
}

std::vector<RainInput> rain_of(const cases::Case& contents) {
  std::vector<RainInput> rain;
  for (const cases::Hyetogram& of : contents.rain) rain.push_back({of.id, sum_of(of)});
  return rain;
}

std::vector<physics::RainClock> rain_clocks_for(const cases::Case& contents, double t,
                                                const std::vector<RainInput>& before,
                                                const std::vector<physics::RainClock>& clocks) {
  std::vector<physics::RainClock> result;
  for (const cases::Hyetogram& rain : contents.rain) {
    const auto known = std::find_if(before.begin(), before.end(),
                                    [&](const RainInput& other) { return other.id == rain.id; });
    const auto number = static_cast<std::size_t>(known - before.begin());
    const bool is_known = number < clocks.size();
    if (is_known && known->checksum == sum_of(rain)) {
      result.push_back(clocks[number]);
      continue;
    }
    physics::RainClock clock =
        physics::clock_before_rain(is_known ? clocks[number].last_update_time : t);
    if (!rain.times.empty()) {
      clock.hyetogram_index = physics::hyetogram_index_at(rain.intervals(), clock.last_update_time);
    }
    result.push_back(clock);
  }
  return result;
}

}  // namespace checkpoint
