// What time brings to a step: boundary values that follow series, rain, and what the step means to
// every soil; and what a caller imposes in place of the case.
#pragma once

#include <span>
#include <vector>

#include "case/Case.hpp"
#include "engine/ForcingTables.hpp"
#include "engine/State.hpp"
#include "engine/Tables.hpp"
#include "engine/step_values.hpp"
#include "physics/rain.hpp"
#include "physics/time_series.hpp"

namespace engine {

/// What bounds the step of the HLL schemes beside the cells: waves that a boundary may send in.
struct BoundaryBound {
  double crossing_rate = 0.0;  ///< 1/s
  int place = -1;              ///< of the cell; -1: no boundary sends any
};

class Forcing {
 public:
  /// Points into the case, which must outlive it.
  Forcing(const cases::Case& contents, const Tables& tables);

  /// Sets what boundaries impose in this step, and finds what follows.
  void begin_step(const StepTimes& times, Tables& tables);
  bool it_rains() const { return it_rains_; }
  /// Depths of the step by number of rain, m; null: it does not rain.
  const double* rain_depths() const { return it_rains_ ? rain_depths_.data() : nullptr; }
  /// By number of soil.
  const std::vector<physics::SoilStep>& soil_steps() const { return soil_steps_; }

  /// From now on a boundary of the case imposes a discharge (m2/s) or a level (m).
  void impose_on_boundary(std::size_t boundary, double value);
  /// From now on steady rains (m/s) fall on owned cells of the case.
  void impose_rain(std::span<const cases::Number> cells, std::span<const double> intensities,
                   Tables& tables);

  /// The largest bound for a step of the HLL schemes from t (s); of several the one at the place
  /// `before`, or else the first.
  BoundaryBound boundary_bound(double t, const Tables& tables, int before);

  /// All of it as it stands between two steps.
  ForcingTables tables(const Tables& tables) const;
  std::vector<physics::RainClock>& rain_clocks() { return rain_clocks_; }

  /// Writes into a state what the steps to come depend on, or puts that of a state in force.
  void save(State& state) const;
  void load(const State& state, Tables& tables);

 private:
  /// A series of discharges (a hydrograph) or of levels (a limnigraph), and its interval in force.
  struct Series {
    physics::SampledSeries samples;
    bool is_level;
    int interval = 0;
    double value = 0.0;  ///< of the step, m2/s or m
    double value_at_end = 0.0;
  };
  struct ImposingBoundary {
    std::size_t number;  ///< in the case
    int place;           ///< in Tables::boundaries
    int series;          ///< -1: none, what it imposes is always the same
  };

  void add_boundaries(const Tables& tables);
  void set_series(double t, Tables& tables);
  /// Whether a caller imposes a value on it.
  bool is_imposed_on(const ImposingBoundary& boundary) const;
  void set_imposed(Tables& tables) const;
  void set_rain(const StepTimes& times);
  void place_rain(Tables& tables);

  const cases::Case& case_;
  std::vector<Series> series_;
  std::vector<ImposingBoundary> imposing_;  ///< in the order of the case
  std::vector<physics::Hyetogram> rain_;
  std::vector<physics::RainClock> rain_clocks_;  ///< the cells of a hyetogram rain alike
  Column rain_depths_;
  bool it_rains_ = false;
  std::vector<physics::SoilStep> soil_steps_;

  // See State.
  std::vector<double> imposed_on_boundaries_, imposed_rain_;
  std::vector<double> steady_rains_;  ///< numbered behind the hyetograms, m/s
};

}  // namespace engine
