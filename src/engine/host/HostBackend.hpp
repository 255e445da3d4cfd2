// The parts of a step on the host: loops of the best instruction set, on a team of threads.
#pragma once

#include "engine/Backend.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/host/SharedList.hpp"
#include "engine/host/SoilDemand.hpp"
#include "engine/host/loops.hpp"

namespace engine {

class HostBackend : public PatchBackend {
 public:
  /// Works on the tables, which must outlive it.
  HostBackend(Tables& tables, ThreadTeam& team, const Loops& loops);

  void outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) override;
  double advance(const std::vector<int>& patches, const kernels::StepValues& step,
                 const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                 StepNotes* notes) override;
  void note_maxima(const std::vector<int>& patches) override;
  void finish_step(const Activity&) override {}
  bool works_in_place() const override { return true; }
  std::optional<NotHyperbolic> not_hyperbolic() const override;
  void ignore_not_hyperbolic() override { watches_hyperbolicity_ = false; }

  int threads() const override { return team_.size(); }
  const char* instruction_set() const override { return loops_.instruction_set; }

 private:
  /// What a thread needs for one patch at a time.
  struct Scratch {
    Slots slots;
    Column reciprocal, celerity;  ///< terms of the depth of its cells, 1/m and m/s
    SoilDemand demand;
    double smallest_step = 0.0;
    std::optional<NotHyperbolic> not_hyperbolic;
  };

  void outer_fluxes(int first_patch, int last_patch, const kernels::StepValues& step,
                    Scratch& scratch);
  void advance_patch(int patch, const Step& step, Scratch& scratch);
  void fluxes_within(const Patch& patch, const kernels::CellColumns& cells,
                     const kernels::StepValues& step, Scratch& scratch);
  /// The columns, with the terms of the depth of a patch.
  kernels::CellColumns columns_with_terms(const Patch& patch, const kernels::StepValues& step,
                                          Scratch& scratch);
  void take_outer_slots(const Patch& patch, Scratch& scratch) const;
  void note_bare_rock(const Patch& patch, const Step& step, Scratch& scratch);
  template <class Index>
  void find_not_hyperbolic(const kernels::EdgeColumns<Index>& edges, const EdgeRange& range,
                           const std::vector<int>& numbers, const kernels::StepValues& step,
                           Scratch& scratch) const;

  Tables& tables_;
  ThreadTeam& team_;
  const Loops& loops_;
  const ModelLoops& model_;
  bool watches_hyperbolicity_;
  std::vector<Scratch> scratch_;  ///< one per thread
  SharedList untaken_;            ///< of the patches of a step
};

}  // namespace engine
