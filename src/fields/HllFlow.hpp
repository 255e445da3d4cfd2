// The flow where a scheme walks the cells of a case one by one.
#pragma once

#include <optional>

#include "fields/WalkedMaxima.hpp"
#include "fields/WholeFlow.hpp"
#include "model/HllWalk.hpp"

namespace fields {

class HllFlow : public WholeFlow {
 public:
  /// The case must outlive it. Throws std::runtime_error where the scheme cannot take it.
  explicit HllFlow(const cases::Case& contents);

  FlowScales scales() const override;
  double stable_step(double t) override { return walk_.step_bound(t).step; }
  double advance(const StepTimes& times) override;

  void read(Field field, std::span<double> values) const override;
  void read(Field field, std::span<const cases::Number> cells,
            std::span<double> values) const override;
  CellState state(cases::Number cell) const override;
  ExecutionPath execution_path() const override { return {"objects", 1, "that of the build"}; }

  void keep_maxima(double arrival_depth) override {
    maxima_.emplace(walk_.water().h.size(), case_.zero_depth, arrival_depth);
  }
  void note_maxima(double t) override {
    if (maxima_) maxima_->note(t, *this);
  }

  void watch() override;
  const physics::StepNotes& notes() const override { return notes_; }
  UnseenDepth unseen_depth(cases::Number cell) const override;
  BoundaryInflow boundary_inflow(int boundary) const override;

  void save(engine::State& state) const override;
  using WholeFlow::load;
  void load(const engine::State& state) override;
  void save_notes(engine::SavedNotes& notes) const override;
  void load_notes(const engine::SavedNotes& notes) override;

 private:
  double value(Field field, cases::Number cell) const;
  void note_states(cases::Number limiting_cell);
  bool has_soils() const;

  const cases::Case& case_;
  HllWalk walk_;
  std::optional<WalkedMaxima> maxima_;  ///< nothing: nobody asks
  bool is_watched_ = false;
  physics::StepNotes notes_;
};

}  // namespace fields
