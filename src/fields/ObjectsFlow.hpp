// The flow where the objects of a model run.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "fields/StepWatch.hpp"
#include "fields/WalkedMaxima.hpp"
#include "fields/WholeFlow.hpp"
#include "model/PhysicalModel.hpp"
#include "model/build_objects.hpp"

namespace fields {

class ObjectsFlow : public WholeFlow {
 public:
  /// Builds the objects of a case, and sets the globals that they read.
  explicit ObjectsFlow(const cases::Case& contents);
  /// The set-up of the model must be complete; it must outlive the flow.
  explicit ObjectsFlow(PhysicalModel& model) : model_(model) {}
  ~ObjectsFlow() override { model_.observer = nullptr; }

  const PhysicalModel& model() const { return model_; }

  FlowScales scales() const override { return {model_.h0, model_.char_length_min}; }
  double stable_step(double) override { return model_.dtMin(); }
  /// Sets the clock that the objects read.
  double advance(const StepTimes& times) override;

  void read(Field field, std::span<double> values) const override;
  void read(Field field, std::span<const cases::Number> cells,
            std::span<double> values) const override;
  CellState state(cases::Number cell) const override;
  ExecutionPath execution_path() const override { return {"objects", 1, "that of the build"}; }

  void keep_maxima(double arrival_depth) override;
  void note_maxima(double t) override {
    if (maxima_) maxima_->note(t, *this);
  }

  void watch() override;
  const physics::StepNotes& notes() const override { return watch_->notes(); }
  UnseenDepth unseen_depth(cases::Number cell) const override { return watch_->unseen_depth(cell); }
  BoundaryInflow boundary_inflow(int boundary) const override;

  void save(engine::State& state) const override;
  using WholeFlow::load;
  void load(const engine::State& state) override;
  void save_notes(engine::SavedNotes& notes) const override;
  void load_notes(const engine::SavedNotes& notes) override;

 private:
  /// What belongs to a state besides h, qx, qy and the largest depths.
  bool has_sediments() const;
  bool has_soils() const { return !objects_.soils.empty(); }
  double value(Field field, cases::Number number) const;
  const ComputationalCell& cell(cases::Number number) const {
    return *model_.cells[cases::at(number)];
  }

  ModelObjects objects_;  ///< empty where the model is somebody else's
  PhysicalModel& model_;
  bool has_stepped_ = false;            ///< the free surface is bed and depth from then on
  std::optional<WalkedMaxima> maxima_;  ///< nothing: nobody asks
  std::unique_ptr<StepWatch> watch_;    ///< null: no step takes notes
  std::vector<const GenericInterface*> boundaries_;  ///< once the steps are watched
};

}  // namespace fields
