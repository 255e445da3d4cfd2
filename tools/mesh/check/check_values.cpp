#include "mesh/check/check_values.hpp"

#include <algorithm>

#include "mesh/check/numbers.hpp"
#include "support/counted.hpp"

namespace tools::check {

namespace {

constexpr double mm_per_h = 1e-3 / 3600.0;  // m/s

/// Where a field leaves its plausible range: how often, and by how much.
struct Outliers {
  long count = 0;
  std::size_t worst = 0;

  template <class IsOutside>
  Outliers(const std::vector<double>& values, IsOutside is_outside) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!is_outside(values[i])) continue;
      if (count++ == 0 || values[i] > values[worst]) worst = i;
    }
  }
  std::string place() const {
    return counted(count, "cell") + ", such as cell " + std::to_string(worst);
  }
};

std::string in_mm_per_h(double intensity) {
  return number(intensity) + " m/s = " + number(intensity / mm_per_h) + " mm/h";
}

}  // namespace

void check_initial_state(const CaseFields& fields, const std::vector<CellValues>& cells,
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
    findings.warning("depth", "the initial depth is " + number(depths[deep.worst]) + " m in " +
                                  deep.place() +
                                  ", expected at most 100 m: are level and bed in metres?");
  }
  const Outliers fast(velocities, [](double v) { return v > largest_velocity; });
  if (fast.count > 0) {
    findings.warning("velocity", "the initial velocity is " + number(velocities[fast.worst]) +
                                     " m/s in " + fast.place() +
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

void check_friction(const CaseFields& fields, Findings& findings) {
  constexpr double smoothest = 0.005, roughest = 0.5;  // s/m^(1/3)
  const Outliers outside(fields.friction,
                         [](double n) { return n != 0.0 && !(n >= smoothest && n <= roughest); });
  if (outside.count == 0) return;
  const double worst = fields.friction[outside.worst];
  findings.warning("friction", "the Manning coefficient is " + number(worst) + " in " +
                                   outside.place() + ", expected 0.005 to 0.5 s/m^(1/3), or 0" +
                                   (worst > 5.0 ? ": is it Strickler's, the inverse?" : ""));
}

void check_rain(const DataFile& data, const std::vector<Hyetogram>& rain, Findings& findings) {
  constexpr double heaviest = 500.0 * mm_per_h;
  for (const Hyetogram& hyetogram : rain) {
    const std::string name = *data.rainfall + ", hyetogram " + std::to_string(hyetogram.id);
    const auto& times = hyetogram.times;
    const auto& intensities = hyetogram.intensities;
    if (times.empty()) {
      findings.warning("rain", name + " has no intervals: it never rains");
      continue;
    }
    const double largest = *std::max_element(intensities.begin(), intensities.end());
    const double smallest = *std::min_element(intensities.begin(), intensities.end());
    if (largest > heaviest) {
      findings.warning("rain", name + " reaches " + in_mm_per_h(largest) +
                                   ", expected at most 500 mm/h: m/s are expected");
    }
    if (smallest < 0.0) {
      findings.warning(
          "rain", name + " falls to " + number(smallest) + " m/s, expected no negative intensity");
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

void check_soils(const CaseFields& fields, const std::vector<Soil>& soils, Findings& findings) {
  constexpr double most_pervious = 0.01;  // m/s, that of gravel
  for (const Soil& soil : soils) {
    const std::string name = "soil " + std::to_string(soil.id);
    const double rate = soil.parameters[0];
    if (!(rate >= 0.0 && rate <= most_pervious)) {
      findings.warning("infiltration", name + ": " + (soil.type == "Horton" ? "f0" : "Ks") +
                                           " is " + in_mm_per_h(rate) +
                                           ", expected 0 to 0.01 m/s: m/s are expected");
    }
    if (soil.type == "GreenAmpt") {
      const double theta_i = soil.parameters[2];
      const double theta_s = soil.parameters[3];
      if (!(theta_i >= 0.0 && theta_i <= theta_s && theta_s > 0.0 && theta_s <= 1.0)) {
        findings.warning("infiltration", name + ": theta_i is " + number(theta_i) +
                                             ", theta_s is " + number(theta_s) +
                                             ", expected 0 <= theta_i <= theta_s <= 1");
      }
    }
  }
  const Outliers negative(fields.infiltrated, [](double f) { return f < 0.0; });
  if (negative.count > 0) {
    findings.warning("infiltration", "the initial infiltration is negative in " + negative.place());
  }
}

void check_sediments(const DataFile& data, const CaseFields& fields, Findings& findings) {
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
  if (has_sediment && !data.friction) {
    findings.warning("sediments",
                     "the bed is mobile, but there is no friction file: no transport can occur");
  }
}

}  // namespace tools::check
