// The flow of a case on the tables of the engine.
#pragma once

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"
#include "engine/Engine.hpp"
#include "fields/TableFields.hpp"
#include "fields/WholeFlow.hpp"

namespace fields {

class TablesFlow : public WholeFlow {
 public:
  /// The case must outlive the flow. Throws std::length_error where the tables have no room for it.
  TablesFlow(const cases::Case& contents, cases::Diagnostics& diagnostics, int threads,
             int cells_per_patch = 0, const engine::Processor& processor = {});

  FlowScales scales() const override {
    return {engine_.tables().h0, engine_.tables().char_length_min};
  }
  double stable_step(double t) override { return engine_.stable_step(t); }
  double advance(const StepTimes& times) override;
  bool advance_alone(engine::RunClock& clock, const engine::StepLimits& limits) override;

  void read(Field field, std::span<double> values) const override { fields_.read(field, values); }
  void read(Field field, std::span<const cases::Number> cells,
            std::span<double> values) const override {
    fields_.read(field, cells, values);
  }
  CellState state(cases::Number cell) const override { return fields_.state(cell); }
  ExecutionPath execution_path() const override;

  void keep_maxima(double arrival_depth) override { engine_.keep_maxima(arrival_depth); }
  bool keeps_maxima() const { return engine_.tables().maxima.has_value(); }
  void note_maxima(double t) override { engine_.note_maxima(t); }

  void watch() override { engine_.watch(case_.t_start); }
  const physics::StepNotes& notes() const override { return engine_.notes(); }
  UnseenDepth unseen_depth(cases::Number cell) const override;
  BoundaryInflow boundary_inflow(int boundary) const override;

  void save(engine::State& state) const override { engine_.save(state); }
  using WholeFlow::load;
  void load(const engine::State& state) override { engine_.set_state(state); }
  void save_notes(engine::SavedNotes& notes) const override { engine_.save_notes(notes); }
  void load_notes(const engine::SavedNotes& notes) override { engine_.load_notes(notes); }

  engine::Engine& engine() { return engine_; }

 private:
  /// Of a step from a time on (s).
  void tell_not_hyperbolic(double t);

  const cases::Case& case_;
  cases::Diagnostics& diagnostics_;
  mutable engine::Engine engine_;
  TableFields fields_;
};

}  // namespace fields
