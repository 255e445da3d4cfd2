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

std::uint64_t sum_of_boundaries(const cases::Mesh& mesh) {
  utils::Checksum sum;
  for (const cases::Boundary& boundary : mesh.boundaries) {
    const bool has_series = boundary.series >= 0;
    const std::uint64_t of = sum_of(boundary.edge, boundary.code, has_series, boundary.value);
    sum.add(&of, sizeof of);
  }
  return sum.value();
}

std::uint64_t sum_of_series(const cases::Case& contents) {
  utils::Checksum sum;
  for (const cases::Boundary& boundary : contents.mesh.boundaries) {
    sum.add(&boundary.series, sizeof boundary.series);
  }
  for (const cases::Series& series : contents.series) {
    sum.add_values(series.times);
    sum.add_values(series.values);
  }
  return sum.value();
}

std::uint64_t sum_of(const cases::Hyetogram& rain) {
  return sum_of(rain.step, rain.times, rain.intensities);
}

std::uint64_t sum_of_rain(const cases::Case& contents) {
  utils::Checksum sum;
  sum.add_values(contents.fields.rain);
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

std::uint64_t sum_of_soils(const cases::Case& contents) {
  utils::Checksum sum;
  sum.add_values(contents.fields.soil);
  for (const cases::Soil& soil : contents.soils) {
    const std::uint64_t kind = soil.parameters.index();
    const std::uint64_t of = std::visit([](const auto& p) { return sum_of(p); }, soil.parameters);
    sum.add(&kind, sizeof kind);
    sum.add(&of, sizeof of);
  }
  return sum.value();
}

}  // namespace

std::vector<Input> inputs_of(const cases::Case& contents, const std::string& version) {
  const cases::Mesh& mesh = contents.mesh;
  const cases::CellFields& fields = contents.fields;
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
      {"the nodes of the mesh", sum_of(mesh.x, mesh.y, mesh.z)},
      {"the cells of the mesh", sum_of(mesh.cell_nodes, mesh.first_node)},
      {"the edges of the mesh", sum_of(mesh.left, mesh.right, mesh.node1, mesh.node2)},
      {"the boundary conditions", sum_of_boundaries(mesh)},
      {"the initial conditions", sum_of(fields.level, fields.qx, fields.qy, fields.infiltrated)},
      {"the bed", sum_of(fields.bed)},
      {"the friction", sum_of(fields.manning)},
      {"the soils", sum_of_soils(contents)},
      {"the initial sediments", sum_of(fields.sediment)},
      {"the parameters of the sediments",
       sum_of(sand.d50, sand.density, sand.manning, sand.porosity)},
      {"the end time", sum_of(contents.t_end), may_change},
      {"the boundary series", sum_of_series(contents), may_change},
      {"the rain", sum_of_rain(contents), may_change},
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
