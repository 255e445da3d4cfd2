// What the soils of a patch ask for in a step.
#pragma once

#include "engine/StepNotes.hpp"
#include "engine/Tables.hpp"
#include "engine/host/loops.hpp"

namespace engine {

/// Scratch of one thread.
class SoilDemand {
 public:
  /// For patches of up to so many cells.
  void resize(const Tables& tables, std::size_t cells);
  /// Of the cells of a patch, m; null where it has no soil. Lets its soils recover, of which the
  /// notes are told (null: nobody asks).
  const double* find(int patch, Tables& tables, const Loops& loops,
                     const std::vector<physics::SoilStep>& soil_steps, StepNotes* notes);

 private:
  Column demand_;
  Column infiltrated_before_;  ///< m
};

}  // namespace engine
