// The flow where a model is compiled into tables.
#pragma once

#include <memory>

#include "fields/Flow.hpp"
#include "model/PhysicalModel.hpp"
#include "model/engine_bridge.hpp"

namespace fields {

class CompiledFlow : public Flow {
 public:
  /// `model` is what was compiled; it must outlive the flow and stays as it is.
  CompiledFlow(std::unique_ptr<CompiledModel> compiled, PhysicalModel& model)
      : compiled_(std::move(compiled)), model_(model) {}

  double stable_step() override { return model_.dtMin(); }
  /// Sets the clock that the time series read.
  double advance(const StepTimes& times) override;

  void read(Field field, std::span<double> values) const override;
  void read(Field field, std::span<const cases::Number> cells,
            std::span<double> values) const override;
  CellState state(cases::Number cell) const override;
  FlowSurvey survey() const override;
  ExecutionPath execution_path() const override {
    return {"tables", tables().threads(), tables().instruction_set()};
  }

  void watch() override;
  const physics::StepNotes& notes() const override { return tables().notes(); }
  UnseenDepth unseen_depth(cases::Number cell) const override;
  BoundaryInflow boundary_inflow(int boundary) const override;

  const engine::Engine& tables() const { return compiled_->tables(); }

 private:
  double value_of(cases::Number cell, const engine::CellOutput& state, Field field) const;

  std::unique_ptr<CompiledModel> compiled_;
  PhysicalModel& model_;
};

}  // namespace fields
