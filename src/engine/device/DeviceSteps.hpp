// The steps of a device, which has the tables in a memory of its own: all of a step is computed
// there, and what of it the host sees is copied when it asks.
#pragma once

#include <span>

#include "engine/Backend.hpp"
#include "engine/Exchange.hpp"

namespace engine::device {

class DeviceSteps : public Backend {
 public:
  /// Steps up to the limits, at least one, after the first step of a run; what is not of a single
  /// step comes in `constants`. The clock is that after them.
  virtual void advance_alone(const kernels::StepValues& constants, const StepLimits& limits,
                             RunClock& clock) = 0;

  // A single step, that of one of several ranks, or one of which notes are taken (null: none).
  /// Begins it; returns at once.
  virtual void start_step(const StepTimes& times, const kernels::StepValues& constants,
                          StepNotes* notes) = 0;
  /// The states after it of the cells that are ghosts of others, when they are there; the other
  /// cells may still be under way.
  virtual PackedHalo packed_halo() = 0;
  /// Ends it: the notes hold what patches tell for StepNotes::of_step, and the tables the level of
  /// the bed where a level is imposed. The smallest stable step of the cells, s.
  virtual double finish_step() = 0;
  /// Takes those of the ghosts, which have been received, and whether the tables still have a given
  /// free surface.
  virtual void take_ghosts() = 0;

  // To be called before anybody reads or changes what the host has of a run:
  virtual void bring_home() = 0;                      ///< all of it
  virtual void bring_home(const Column& column) = 0;  ///< a column of the cells
  /// That of the cells at places.
  virtual void bring_home(const Column& column, std::span<const int> places) = 0;
  virtual void bring_home(const Range& places) = 0;  ///< the states of cells
  virtual void bring_inflows_home() = 0;             ///< what passed the boundaries
  virtual void bring_forcing_home() = 0;             ///< Forcing and Activity
  /// To be called after the tables or the notes were changed otherwise than by a step.
  virtual void take_anew() = 0;
};

}  // namespace engine::device
