// The only place that knows both the objects of a model and the tables of the engine.
#pragma once

#include <memory>
#include <vector>

#include "engine/Engine.hpp"

class PhysicalModel;
class HydroBCHydrograph;
class HydroBCLimnigraph;

/// A model compiled into tables. The objects stay as they were.
class CompiledModel {
 public:
  /// Compiles a model whose set-up is complete; null if it holds anything that the tables do not
  /// know. QUILLMERE_ENGINE=objects asks for none; with QUILLMERE_ENGINE=tables a model that cannot
  /// be compiled throws std::runtime_error, so that the path is certain. `cells_per_patch`: see
  /// engine::ModelInput.
  static std::unique_ptr<CompiledModel> compile(PhysicalModel& model, int threads,
                                                int cells_per_patch);

  /// Advances the tables by Globals::dt; the stable step of the new state, s.
  double advance();

  engine::Engine& tables() { return engine_; }
  const engine::Engine& tables() const { return engine_; }

 private:
  template <class Interface>
  struct SeriesBoundary {
    int boundary;
    Interface* interface;
  };

  CompiledModel(PhysicalModel& model, engine::ModelInput&& input, int threads);

  engine::Engine engine_;
  std::vector<SeriesBoundary<HydroBCHydrograph>> hydrographs_;
  std::vector<SeriesBoundary<HydroBCLimnigraph>> limnigraphs_;
};
