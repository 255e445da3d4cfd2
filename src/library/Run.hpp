// A simulation of the library behind its header.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "case/AreaLoss.hpp"
#include "case/DataFile.hpp"
#include "case/PointLocator.hpp"
#include "fields/Clock.hpp"
#include "fields/TablesFlow.hpp"
#include "quillmere/simulation.hpp"

namespace quillmere {

/// Keeps warnings for whoever asks.
class Warnings : public cases::Diagnostics {
 public:
  void error(const std::string& message) override { throw Error(message); }
  void warn(const std::string& message) override { warnings_.push_back(message); }
  std::vector<std::string> take() { return std::exchange(warnings_, {}); }

 private:
  std::vector<std::string> warnings_;
};

/// What it is given has been checked, unless it says otherwise.
class Simulation::Run {
 public:
  Run(const Case& given, const Options& options);
  Run(const std::string& data_file, const Options& options);
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  const cases::Case& contents() const { return case_; }
  Warnings& warnings() { return warnings_; }
  const fields::TablesFlow& flow() const { return *flow_; }

  /// With a step that suits the present water.
  const fields::Clock& clock();
  bool is_complete() const { return clock_.t >= case_.t_end; }
  void step();

  cases::Number cell_at(double x, double y);
  double inflow(int boundary) const;

  void set_water(std::span<const cases::Number> cells,
                 std::span<const physics::InitialWater> water);
  void set_rain(std::span<const cases::Number> cells, std::span<const double> intensities);
  void set_boundary(int boundary, double value);
  void keep_maxima(double arrival_depth);
  /// Brings the maxima up to the present time, where they are kept.
  void note_maxima() { flow_->note_maxima(clock_.t); }

  State save();
  /// Throws an Error where the state is none of this case.
  void load(const State& state);

 private:
  void begin(const cases::DataFile& data, const AreaLoss& area_loss, const Options& options);

  Warnings warnings_;
  cases::Case case_;
  std::unique_ptr<fields::TablesFlow> flow_;  ///< of case_
  fields::Clock clock_;
  bool has_other_water_ = false;  ///< than the one that the step was found for
  bool has_last_step_ = false;    ///< whose inflows stand in the flow
  std::unique_ptr<PointLocator> locator_;
};

}  // namespace quillmere
