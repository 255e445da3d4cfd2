#include "mesh/check/check_values.hpp"

#include <algorithm>

#include "case/keys.hpp"
#include "case/plausibility.hpp"
#include "mesh/check/numbers.hpp"

namespace tools::check {

namespace {

using cases::key;
using plausibility::in_mm_per_h;
using plausibility::mm_per_h;
using plausibility::Outliers;

}  // namespace

void check_initial_state(const cases::CellFields& fields, const std::vector<CellValues>& cells,
                         Findings& findings) {
  if (fields.level.empty() || cells.empty()) return;
  std::vector<double> depths, velocities;
  for (const CellValues& cell : cells) {
    depths.push_back(cell.depth);
    velocities.push_back(cell.velocity);
  }
  constexpr double largest_depth = 100.0;    // m
  constexpr double largest_velocity = 20.0;  // m/s
  const Outliers deep(depths, [](double h) { return h > largest_depth; });
  if (deep.count > 0) {
    findings.warning("depth", "the initial depth is " + number(deep.largest) + " m in " +
                                  deep.place() +
                                  ", expected at most 100 m: are level and bed in metres?");
  }
  const Outliers fast(velocities, [](double v) { return v > largest_velocity; });
  if (fast.count > 0) {
    findings.warning("velocity", "the initial velocity is " + number(fast.largest) + " m/s in " +
                                     fast.place() +
                                     ", expected at most 20 m/s: qx and qy are in m2/s");
  }
  const double highest = *std::max_element(fields.level.begin(), fields.level.end());
  const double lowest_bed =
      std::min_element(cells.begin(), cells.end(), [](const CellValues& a, const CellValues& b) {
        return a.bed < b.bed;
      })->bed;
  if (highest < lowest_bed && highest != 0.0) {
    findings.warning("depth", "all initial levels lie below the bed (" + number(highest) +
                                  " m at the highest, the bed " + number(lowest_bed) +
                                  " m at the lowest): are they depths? levels are expected");
  }
}

void check_friction(const DataFile& data, const cases::CellFields& fields, Findings& findings) {
  if (fields.manning.empty()) return;
  findings.add_remark("friction", plausibility::on_friction(
                                      data.files.at(key("model/conditions/friction")),
                                      Outliers(fields.manning, plausibility::is_strange_friction)));
}

void check_rain(const DataFile& data, const std::vector<cases::Hyetogram>& rain,
                Findings& findings) {
  if (rain.empty()) return;
  const std::string& file = data.files.at(key("model/sources/rainfall"));
  constexpr double heaviest = 500.0 * mm_per_h;
  for (const cases::Hyetogram& hyetogram : rain) {
    const std::string name = file + ", hyetogram " + std::to_string(hyetogram.id);
    const auto& times = hyetogram.times;
    const auto& intensities = hyetogram.intensities;
    findings.add_remarks(
        "rain", plausibility::on_hyetogram(file, hyetogram.id, hyetogram.step, intensities));
    if (times.empty()) continue;
    const double largest = *std::max_element(intensities.begin(), intensities.end());
    if (largest > heaviest) {
      findings.warning("rain", name + " reaches " + in_mm_per_h(largest) +
                                   ", expected at most 500 mm/h: m/s are expected");
    }
    if (!std::is_sorted(times.begin(), times.end())) {
      findings.warning("rain", name + " has start times that do not increase");
    }
    if (!data.has_steps()) continue;
    if (times.front() > *data.t0) {
      findings.warning("series coverage", name + " begins at " + number(times.front()) +
                                              " s, after the run (" + number(*data.t0) +
                                              " s): its first intensity falls from the start");
    }
    if (times.size() > 1 && times.back() < *data.tend && intensities.back() != 0.0) {
      findings.warning("series coverage",
                       name + " last changes at " + number(times.back()) + " s, before the end (" +
                           number(*data.tend) + " s): it rains on with " +
                           in_mm_per_h(intensities.back()) + "; a last intensity of 0 ends it");
    }
  }
}

void check_soils(const DataFile& data, const cases::CellFields& fields,
                 const std::vector<cases::Soil>& soils, Findings& findings) {
  for (const cases::Soil& soil : soils) {
    const auto remarks_on = [&](const auto& parameters) {
      return plausibility::on_soil(data.files.at(key("model/sources/infiltration")), soil.id,
                                   parameters);
    };
    findings.add_remarks("infiltration", std::visit(remarks_on, soil.parameters));
  }
  if (fields.infiltrated.empty()) return;
  findings.add_remarks("infiltration",
                       plausibility::on_initial_infiltration(
                           data.files.at(key("model/sources/initial infiltration")),
                           Outliers(fields.infiltrated, plausibility::is_infiltration_below_zero),
                           Outliers(fields.infiltrated, plausibility::is_deep_infiltration)));
}

void check_sediments(const DataFile& data, const cases::CellFields& fields, Findings& findings) {
  if (!data.has_sediments()) return;
  const bool has_sediment = std::any_of(fields.sediment.begin(), fields.sediment.end(),
                                        [](double hs) { return hs > 0.0; });
  // Without sediment in any cell the simulator runs with senseless parameters.
  const auto refuse_or_warn = [&](const std::string& text) {
    if (has_sediment) {
      findings.error("sediments", text);
    } else {
      findings.warning("sediments", text);
    }
  };
  if (data.porosity && !(*data.porosity >= 0.0 && *data.porosity < 1.0)) {
    findings.error("sediments", "\"sediments porosity\" is " + number(*data.porosity) +
                                    ", expected a number from 0 to less than 1");
  }
  constexpr double finest = 1e-5, coarsest = 0.5;  // m
  if (data.mean_grain && !(*data.mean_grain > 0.0)) {
    refuse_or_warn("\"sediments mean grain diameter\" is " + number(*data.mean_grain) +
                   " m, expected a positive diameter");
  } else if (data.mean_grain && (*data.mean_grain < finest || *data.mean_grain > coarsest)) {
    findings.warning("sediments", "\"sediments mean grain diameter\" is " +
                                      number(*data.mean_grain) +
                                      " m, expected 1e-5 to 0.5 m: are they millimetres?");
  }
  constexpr double heaviest = 20.0;
  if (data.density && !(*data.density > 1.0)) {
    refuse_or_warn("\"sediments density\" is " + number(*data.density) +
                   ", expected more than 1: it is relative to water");
  } else if (data.density && *data.density > heaviest) {
    findings.warning("sediments", "\"sediments density\" is " + number(*data.density) +
                                      ": it is relative to water; was it given in kg/m3?");
  }
  const Outliers negative(fields.sediment, [](double hs) { return hs < 0.0; });
  if (negative.count > 0) {
    findings.warning("sediments", "the sediment thickness is negative in " + negative.place());
  }
  if (has_sediment && data.files.find(key("model/conditions/friction")) == nullptr) {
    findings.warning("sediments",
                     "the bed is mobile, but there is no friction file: no transport can occur");
  }
}

}  // namespace tools::check
