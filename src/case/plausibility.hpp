// Values with which a run goes on and means nothing: each rule once, for the warnings of a run and
// for programs that look at a case before it runs. A remark says what was found and what is
// expected, without a full stop.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "case/Case.hpp"

namespace plausibility {

using Remark = std::optional<std::string>;  ///< empty: nothing is wrong
using Remarks = std::vector<std::string>;

/// A remark as a line of its own.
std::string sentence(const std::string& remark);

/// Where a field of cells leaves its plausible range: how often, and the cell with the largest of
/// the values outside.
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
  /// "24 cells, such as cell 0".
  std::string place() const;
};

inline constexpr double mm_per_h = 1e-3 / 3600.0;  ///< m/s

/// "2e-05 m/s = 72 mm/h".
std::string in_mm_per_h(double intensity);

Remark on_run_time(double t0, double tend);
Remark on_courant_number(double courant);
Remark on_dry_depth(double depth, bool has_sediments);
Remark on_infiltration(bool is_given, bool has_sediments);
/// `interval` names it, as in "\"output/time step enveloppe of results\"".
Remark on_interval(const std::string& interval, double seconds);

/// The friction file and its Manning coefficients, s/m^(1/3).
Remark on_friction(const std::string& file, const std::vector<double>& coefficients);

/// A hyetogram of the rain file: its step (s) and intensities (m/s).
Remarks on_hyetogram(const std::string& file, int id, int step,
                     const std::vector<double>& intensities);

/// A soil of the soils file.
Remarks on_soil(const std::string& file, int id, const cases::GreenAmptParameters& soil);
Remarks on_soil(const std::string& file, int id, const cases::HortonParameters& soil);
/// The file of infiltrated depths at the start, m.
Remarks on_initial_infiltration(const std::string& file, const std::vector<double>& depths);

/// A boundary that lets up to `discharge` (m2/s, positive outwards) out of cells of which the
/// shallowest is `depth` (m) deep at the start. `boundary` names it.
Remark on_outflow(const std::string& boundary, double discharge, double depth, double dry_depth);

}  // namespace plausibility
