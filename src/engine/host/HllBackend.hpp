// A step of the HLL schemes on the host. Every patch computes all that it needs from the state
// before the step, that of the cells around it too, and writes the state after it elsewhere:
// patches take nothing from one another within a step.
#pragma once

#include "engine/Backend.hpp"
#include "engine/HllPatches.hpp"
#include "engine/SpreadColumns.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/host/SharedList.hpp"
#include "engine/host/SoilDemand.hpp"
#include "engine/host/loops.hpp"

namespace engine {

class HllBackend : public PatchBackend {
 public:
  /// Works on the tables, which must outlive it.
  HllBackend(Tables& tables, ThreadTeam& team, const Loops& loops);

  /// Patches compute their own.
  void outer_fluxes(const std::vector<int>&, const kernels::StepValues&) override {}
  double advance(const std::vector<int>& patches, const kernels::StepValues& step,
                 const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                 StepNotes* notes) override;
  void note_maxima(const std::vector<int>& patches) override;
  void finish_step(const Activity& activity) override;
  bool works_in_place() const override { return false; }
  std::optional<NotHyperbolic> not_hyperbolic() const override { return {}; }
  void ignore_not_hyperbolic() override {}

  int threads() const override { return team_.size(); }
  const char* instruction_set() const override { return loops_.instruction_set; }

 private:
  /// What a thread needs for one patch at a time.
  struct Scratch {
    SpreadColumns<5> water;   ///< of kernels::HllWaterColumns
    SpreadColumns<5> edge;    ///< of kernels::HllEdgeColumns; empty in first order
    SpreadColumns<2> giving;  ///< of kernels::HllCellStates; empty in second order
    SpreadColumns<2> source;
    SpreadColumns<4> bed;  ///< of kernels::HllBedColumns; empty without sediments
    Slots slots;
    SoilDemand demand;
    double crossing_rate = 0.0;  ///< largest so far, 1/s

    kernels::HllWaterColumns waters();
    kernels::HllEdgeColumns edges(int stride);
    kernels::HllCellStates states();
    kernels::HllBeforeColumns before() const;
    kernels::HllBedColumns beds();
  };

  HllAhead ahead(int number) const;
  void advance_patch(int number, const Step& step, const HllAhead& next, Scratch& scratch);
  HllRange range_of(int number) const;
  /// What passes all edges of a patch, into its slots.
  void second_order_fluxes(int number, const kernels::StepValues& step, const HllAhead& next,
                           Scratch& scratch);
  void first_order_fluxes(int number, const kernels::StepValues& step, const HllAhead& next,
                          Scratch& scratch);
  template <class Visit>
  void for_each_boundary(int number, const Visit& visit) const;
  template <class States>
  void boundary_fluxes(int number, const States& states, const kernels::StepValues& step,
                       Scratch& scratch);
  void boundary_bed_fluxes(int number, const kernels::StepValues& step, Scratch& scratch);

  Tables& tables_;
  ThreadTeam& team_;
  const Loops& loops_;
  std::vector<Scratch> scratch_;
  SharedList untaken_;  ///< of the patches of a step
};

}  // namespace engine
