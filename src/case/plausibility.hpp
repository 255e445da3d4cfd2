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
  double largest = 0.0;

  Outliers() = default;
  template <class IsOutside>
  Outliers(const std::vector<double>& values, IsOutside is_outside) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (is_outside(values[i])) note(values[i], i);
    }
  }
  /// A value outside, of a cell behind those so far.
  void note(double value, std::size_t cell) {
    if (count++ == 0 || value > largest) {
      worst = cell;
      largest = value;
    }
  }
  /// Takes in those of other cells.
  void add(const Outliers& other);
  /// "24 cells, such as cell 0".
  std::string place() const;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.count, self.worst, self.largest);
  }
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

/// A Manning coefficient that no bed has, s/m^(1/3).
bool is_strange_friction(double coefficient);
/// The friction file and those of its coefficients.
Remark on_friction(const std::string& file, const Outliers& strange);

/// A hyetogram of the rain file: its step (s) and intensities (m/s).
Remarks on_hyetogram(const std::string& file, int id, int step,
                     const std::vector<double>& intensities);

/// A soil of the soils file.
Remarks on_soil(const std::string& file, int id, const cases::GreenAmptParameters& soil);
Remarks on_soil(const std::string& file, int id, const cases::HortonParameters& soil);
/// A depth of which so much cannot have infiltrated at the start, m.
bool is_infiltration_below_zero(double depth);
bool is_deep_infiltration(double depth);
/// The file of infiltrated depths and those of them.
Remarks on_initial_infiltration(const std::string& file, const Outliers& below_zero,
                                const Outliers& deep);

/// A boundary that lets up to `discharge` (m2/s, positive outwards) out of cells of which the
/// shallowest is `depth` (m) deep at the start. `boundary` names it.
Remark on_outflow(const std::string& boundary, double discharge, double depth, double dry_depth);

}  // namespace plausibility
