// Rain of one hyetogram, shared by the cells under it.
#pragma once

#include <vector>

#include "physics/rain.hpp"
#include "sources/SourceTerm.hpp"
#include "utils/TextScanner.hpp"

class RainTerm : public SourceTerm {
 public:
  RainTerm() = default;
  /// A hyetogram of `count` intervals, to be read, that rains in bursts of about `dts` seconds.
  RainTerm(int id, int count, int dts);

  /// Reads `count` pairs of start time (s) and intensity (m/s).
  void read_hyetogram(utils::TextScanner& file, int count);
  /// Whether no interval starts before the one above it.
  bool is_in_order() const;
  /// The last interval that has started at time t (s); the first one before every start.
  int current_hyetogram_index(double t) const;

  void compute_source_term(double t, HydraulicVariableSWE& source, HydraulicVariableSWE& state,
                           ParamCell& param) override;

  /// The hyetogram as the formulas take it; it points into this term.
  physics::Hyetogram hyetogram() const {
    return {times.data(), intensities.data(), static_cast<int>(times.size()), get_dts()};
  }

  std::vector<double> times;        ///< s
  std::vector<double> intensities;  ///< m/s
};
