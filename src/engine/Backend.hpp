// What computes the steps over the tables: the host's loops, or a device.
#pragma once

#include <optional>
#include <vector>

#include "engine/Activity.hpp"
#include "engine/Forcing.hpp"
#include "engine/StepNotes.hpp"

namespace engine {

/// Where the coupled system of water and bed was found not to be hyperbolic.
struct NotHyperbolic {
  int edge;   ///< its number in the whole case
  int place;  ///< of the cell
  double h, qx, qy;
};

class Backend {
 public:
  virtual ~Backend() = default;

  /// Notes the present states of patches in the maxima of the tables, as a step does with those
  /// before it; for patches that take no part in it.
  virtual void note_maxima(const std::vector<int>& patches) = 0;
  /// Where the last step was not hyperbolic, on the first such edge of the model.
  virtual std::optional<NotHyperbolic> not_hyperbolic() const = 0;
  /// From now on no step looks for that.
  virtual void ignore_not_hyperbolic() = 0;

  virtual int threads() const = 0;
  virtual const char* instruction_set() const = 0;
};

/// What the patches of a step have in common.
struct Step {
  const kernels::StepValues& values;
  const std::vector<physics::SoilStep>& soil_steps;
  Activity& activity;
  StepNotes* notes;  ///< null: nobody asks
};

/// The parts of a step on the host.
class PatchBackend : public Backend {
 public:
  /// Begins a step: fluxes over the cut edges and boundaries of patches, in ascending order.
  virtual void outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) = 0;
  /// The rest of the step of patches: the fluxes within them, sources, balance and dry rules. Tells
  /// `activity` which of them may change again, and `notes` (null: nobody asks) what is to be
  /// noted. The smallest stable step of their cells, s; unbounded without patches.
  virtual double advance(const std::vector<int>& patches, const kernels::StepValues& step,
                         const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                         StepNotes* notes) = 0;
  /// After all patches of a step: the state after it comes into force.
  virtual void finish_step(const Activity& activity) = 0;
  /// Whether the state of a patch is in force as soon as the patch is computed.
  virtual bool works_in_place() const = 0;
};

}  // namespace engine
