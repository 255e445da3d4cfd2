#include "case/plausibility.hpp"

#include <algorithm>

#include "utils/counted.hpp"
#include "utils/number_text.hpp"

namespace plausibility {

namespace {

using utils::number_text;

std::string soil_name(const std::string& file, int id) {
  return file + ", soil " + std::to_string(id) + ": ";
}

void check_capacity(Remarks& remarks, const std::string& name, double rate) {
  constexpr double most_pervious = 0.01;  // m/s, that of gravel
  if (rate >= 0.0 && rate <= most_pervious) return;
  remarks.push_back(name + " is " + in_mm_per_h(rate) +
                    ", expected 0 to 0.01 m/s: m/s are expected");
}

/// A rate below 0 means no recovery, as 0 does.
void check_recovery(Remarks& remarks, const std::string& soil, double kr) {
  if (kr <= 1.0) return;
  remarks.push_back(soil + "kr is " + number_text(kr) +
                    " 1/s, expected at most 1: the soil forgets within a second what it took up");
}

}  // namespace

std::string sentence(const std::string& remark) {
  return remark.ends_with('?') ? remark : remark + ".";
}

void Outliers::add(const Outliers& other) {
  const bool is_worse =
      other.largest > largest || (other.largest == largest && other.worst < worst);
  if (other.count > 0 && (count == 0 || is_worse)) {
    worst = other.worst;
    largest = other.largest;
  }
  count += other.count;
}

std::string Outliers::place() const {
  return utils::counted(count, "cell") + ", such as cell " + std::to_string(worst);
}

std::string in_mm_per_h(double intensity) {
  return number_text(intensity) + " m/s = " + number_text(intensity / mm_per_h) + " mm/h";
}

Remark on_run_time(double t0, double tend) {
  if (t0 < tend) return {};
  return "the run ends (\"tend\" is " + number_text(tend) +
         " s) no later than it starts (\"t0\" is " + number_text(t0) + " s): it computes nothing";
}

Remark on_courant_number(double courant) {
  if (courant > 0.0 && courant <= 1.0) return {};
  const std::string text = "\"CFL\" is " + number_text(courant);
  if (courant > 1.0) return text + ", expected at most 1: the scheme is not stable beyond";
  return text + ", expected more than 0: no step advances the run";
}

Remark on_dry_depth(double depth, bool has_sediments) {
  constexpr double largest_film = 0.1;  // m
  const std::string text = "\"model/zero depth value\" is " + number_text(depth) + " m, expected ";
  if (depth < 0.0) {
    return text + "a thin film, from 0 to 0.1 m: cells without water count as wet";
  }
  if (depth > largest_film) return text + "a thin film, from 0 to 0.1 m";
  if (depth == 0.0 && has_sediments) {
    return text +
           "more than 0 with sediments: films without depth move the bed, and a millimetre "
           "is a good value";
  }
  return {};
}

Remark on_infiltration(bool is_given, bool has_sediments) {
  if (!is_given || !has_sediments) return {};
  return "the case has infiltration, but nothing infiltrates in the model with sediments: it is "
         "left out of account";
}

Remark on_interval(const std::string& interval, double seconds) {
  if (seconds > 0.0) return {};
  return interval + " is " + number_text(seconds) +
         " s, expected a positive interval: there is an output at every step";
}

bool is_strange_friction(double coefficient) {
  constexpr double smoothest = 0.005, roughest = 1.0;  // s/m^(1/3)
  return coefficient != 0.0 && !(coefficient >= smoothest && coefficient <= roughest);
}

Remark on_friction(const std::string& file, const Outliers& strange) {
  if (strange.count == 0) return {};
  const double worst = strange.largest;
  return file + ": the Manning coefficient is " + number_text(worst) + " in " + strange.place() +
         ", expected 0.005 to 1 s/m^(1/3), or 0" +
         (worst > 5.0   ? ": is it Strickler's, the inverse?"
          : worst < 0.0 ? ": its square counts, so the sign does not"
                        : "");
}

Remarks on_hyetogram(const std::string& file, int id, int step,
                     const std::vector<double>& intensities) {
  const std::string name = file + ", hyetogram " + std::to_string(id);
  Remarks remarks;
  if (intensities.empty()) {
    remarks.push_back(name + " has no intervals: it never rains");
    return remarks;
  }
  const double smallest = *std::min_element(intensities.begin(), intensities.end());
  if (smallest < 0.0) {
    remarks.push_back(name + " falls to " + number_text(smallest) +
                      " m/s, expected no negative intensity: it takes water out, whether there is "
                      "any or not");
  }
  if (step < 0) {
    remarks.push_back(name + " has a step of " + std::to_string(step) +
                      " s, expected 0 or more: rain is added at every step of the run");
  }
  return remarks;
}

Remarks on_soil(const std::string& file, int id, const cases::GreenAmptParameters& soil) {
  const std::string name = soil_name(file, id);
  constexpr double largest_suction = 10.0;  // m
  Remarks remarks;
  check_capacity(remarks, name + "Ks", soil.Ks);
  if (!(soil.psi > 0.0 && soil.psi <= largest_suction)) {
    remarks.push_back(
        name + "psi is " + number_text(soil.psi) +
        " m, expected more than 0 and at most 10 m: the soil takes nothing up, or all "
        "there is");
  }
  const bool is_possible = soil.theta_i >= 0.0 && soil.theta_i <= soil.theta_s &&
                           soil.theta_s > 0.0 && soil.theta_s <= 1.0;
  if (!is_possible) {
    remarks.push_back(name + "theta_i is " + number_text(soil.theta_i) + ", theta_s is " +
                      number_text(soil.theta_s) + ", expected 0 <= theta_i <= theta_s <= 1");
  }
  if (!(soil.L > 0.0)) {
    remarks.push_back(name + "L is " + number_text(soil.L) +
                      " m, expected a layer of some depth: this one has no room for water");
  }
  check_recovery(remarks, name, soil.kr);
  return remarks;
}

Remarks on_soil(const std::string& file, int id, const cases::HortonParameters& soil) {
  const std::string name = soil_name(file, id);
  Remarks remarks;
  check_capacity(remarks, name + "f0", soil.f0);
  if (!(soil.fc >= 0.0 && soil.fc <= soil.f0)) {
    remarks.push_back(name + "fc is " + number_text(soil.fc) + " m/s, f0 is " +
                      number_text(soil.f0) +
                      " m/s, expected 0 <= fc <= f0: the capacity falls as the soil fills");
  }
  if (!(soil.k >= 0.0)) {
    remarks.push_back(name + "k is " + number_text(soil.k) +
                      " 1/m, expected 0 or more: the capacity grows without bound");
  }
  if (!(soil.Fmax > 0.0)) {
    remarks.push_back(name + "Fmax is " + number_text(soil.Fmax) +
                      " m, expected more than 0: the soil has no room for water");
  }
  check_recovery(remarks, name, soil.kr);
  return remarks;
}

bool is_infiltration_below_zero(double depth) { return depth < 0.0; }

bool is_deep_infiltration(double depth) {
  constexpr double deepest = 100.0;  // m
  return depth > deepest;
}

Remarks on_initial_infiltration(const std::string& file, const Outliers& below_zero,
                                const Outliers& deep) {
  Remarks remarks;
  if (below_zero.count > 0) {
    remarks.push_back(file + ": the initial infiltration is negative in " + below_zero.place() +
                      ", expected 0 m or more");
  }
  if (deep.count > 0) {
    remarks.push_back(file + ": the initial infiltration is " + number_text(deep.largest) +
                      " m in " + deep.place() + ", expected at most 100 m: is it in metres?");
  }
  return remarks;
}

Remark on_outflow(const std::string& boundary, double discharge, double depth, double dry_depth) {
  if (!(discharge > 0.0) || depth > dry_depth) return {};
  return boundary + " takes water out of dry cells: an inflow is negative";
}

}  // namespace plausibility
