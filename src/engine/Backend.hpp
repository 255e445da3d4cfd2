// What runs the parts of a step over the tables: the host's loops, or a device.
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

/// What the patches of a step have in common.
struct Step {
  const kernels::StepValues& values;
  const std::vector<physics::SoilStep>& soil_steps;
  Activity& activity;
  StepNotes* notes;  ///< null: nobody asks
};

class Backend {
 public:
  virtual ~Backend() = default;

  /// Begins a step: fluxes over the cut edges and boundaries of patches, in ascending order.
  virtual void outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) = 0;
  /// The rest of the step of patches: the fluxes within them, sources, balance and dry rules. Tells
  /// `activity` which of them may change again, and `notes` (null: nobody asks) what is to be
  /// noted. The smallest stable step of their cells, s; unbounded without patches.
  virtual double advance(const std::vector<int>& patches, const kernels::StepValues& step,
                         const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                         StepNotes* notes) = 0;
  /// Notes the present states of patches in the maxima of the tables, as advance() does with those
  /// before its step; for patches that take no part in it.
  virtual void note_maxima(const std::vector<int>& patches) = 0;
  /// After all patches of a step: the state after it comes into force.
  virtual void finish_step(const Activity& activity) = 0;
  /// Whether the state of a patch is in force as soon as the patch is computed.
  virtual bool works_in_place() const = 0;
  /// Where this step was not hyperbolic, on the first such edge of the model.
  virtual std::optional<NotHyperbolic> not_hyperbolic() const = 0;
  /// From now on no step looks for that.
  virtual void ignore_not_hyperbolic() = 0;

  /// Whether it can compute steps that nobody sees, all that belongs to them included.
  virtual bool can_go_alone() const { return false; }
  /// Steps up to the limits, at least one, after the first step of a run; what is not of a single
  /// step comes in `constants`. Forcing, activity and clock are those after them.
  virtual void advance_alone(Forcing&, Activity&, const kernels::StepValues& /*constants*/,
                             const StepLimits&, RunClock&) {}
  /// To be called before anybody reads or changes the tables: their state may be elsewhere.
  virtual void bring_home() {}
  /// The same for who reads a column of the cells alone.
  virtual void bring_home(const Column&) {}
  /// To be called after the tables were changed otherwise than by a step.
  virtual void take_anew() {}

  virtual int threads() const = 0;
  virtual const char* instruction_set() const = 0;
};

}  // namespace engine
