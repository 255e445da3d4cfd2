// The only place that knows both the objects of a model and the tables of the engine.
#pragma once

#include <memory>
#include <vector>

#include "engine/Engine.hpp"

class PhysicalModel;
class HydroBCHydrograph;
class HydroBCLimnigraph;

/// A model compiled into tables. The objects keep what they are; their states are refreshed on
/// demand by the publish functions.
class CompiledModel {
 public:
  /// Compiles a model whose set-up is complete; null if it holds anything that the tables do not
  /// know. QUILLMERE_ENGINE=objects asks for none; with QUILLMERE_ENGINE=tables a model that cannot
  /// be compiled throws std::runtime_error, so that the path is certain. `cells_per_patch`: see
  /// engine::ModelInput.
  static std::unique_ptr<CompiledModel> compile(PhysicalModel& model, int threads,
                                                int cells_per_patch);

  void fluxes();
  /// Sources, balance and dry rules; the stable step of the new state, s.
  double advance();

  /// Copies the states of the tables into the objects: of all cells, or of those given.
  void publish();
  void publish(const std::vector<int>& cells);

  const engine::Engine& tables() const { return engine_; }
  /// See engine::Engine::watch.
  void watch(const physics::StepNotes& before) { engine_.watch(before); }

 private:
  template <class Interface>
  struct SeriesBoundary {
    int boundary;
    Interface* interface;
  };

  CompiledModel(PhysicalModel& model, engine::ModelInput&& input, int threads);
  void store(int cell, const engine::CellOutput& state);

  PhysicalModel& model_;
  engine::Engine engine_;
  std::vector<SeriesBoundary<HydroBCHydrograph>> hydrographs_;
  std::vector<SeriesBoundary<HydroBCLimnigraph>> limnigraphs_;
};
