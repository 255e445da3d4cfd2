// The kernel that ends a step: the smallest stable step of all patches and boundaries, the clock,
// and whether somebody has to see the states. One block, of as many threads as a card allows: it
// looks through all patches by itself.
#pragma once

#include "engine/device/BeginStep.hpp"
#include "engine/device/PatchFindings.hpp"
#include "physics/hll_boundary.hpp"

namespace engine::device {

struct EndStep {
  static constexpr int phases = 3, threads = 1024, blocks_at_once = 1;

  TableView tables;
  ForcingView forcing;
  const char* takes_part;         ///< of the patches
  const PatchFindings* findings;  ///< of the patches that take part
  const EdgeFound* edges_found;   ///< around the patches with outer fluxes; null: nobody looks
  int patches;
  bool boundaries_bound_step;        ///< see step_of_boundaries
  double dry_step, char_length_min;  ///< s, m
  StepClock* clock;

  /// What a thread finds: a step, and an edge.
  static int scratch_words() { return (1 + EdgeFound::words) * threads; }
  QM_HD bool has_work(const EndStep& kernel, int) { return !kernel.clock->halted; }

  /// 0: every thread in its share of the patches and boundaries.
  template <class Scratch>
  QM_HD void run(Phase<0>, const EndStep& kernel, const Thread& thread, Scratch scratch) {
    double smallest = physics::unbounded_step;
    EdgeFound first;
    for (int p = thread.number; p < kernel.patches; p += thread.count) {
      // A patch that takes no part is dry.
      const bool takes_part = kernel.takes_part[p] != 0;
      smallest = physics::smaller(smallest,
                                  takes_part ? kernel.findings[p].smallest_step : kernel.dry_step);
      if (kernel.edges_found == nullptr) continue;
      first = first_of(first, kernel.edges_found[p]);
      if (takes_part) first = first_of(first, kernel.findings[p].not_hyperbolic);
    }
    if (kernel.boundaries_bound_step)
      smallest = physics::smaller(smallest, step_of_boundaries(kernel, thread));
    store(kernel, thread.number, scratch, smallest, first);
  }

  /// 1 and 2: all of them, by groups of threads, then together.
  template <class Scratch>
  QM_HD void run(Phase<1>, const EndStep& kernel, const Thread& thread, Scratch scratch) {
    if (thread.number >= groups) return;
    unite(kernel, thread.number, thread.count, groups, scratch);
  }
  template <class Scratch>
  QM_HD void run(Phase<2>, const EndStep& kernel, const Thread& thread, Scratch scratch) {
    if (thread.number > 0) return;
    unite(kernel, 0, groups, 1, scratch);
    const double smallest = scratch[0];
    kernel.clock->smallest_step = smallest;
    kernel.clock->not_hyperbolic = load_edge_found(scratch + threads, threads);
    go_on(*kernel.clock, physics::stable_step_domain(smallest, kernel.char_length_min));
  }

 private:
  static constexpr int groups = 16;

  template <class Scratch>
  QM_HD void store(const EndStep&, int thread, Scratch scratch, double smallest,
                   const EdgeFound& first) {
    scratch[thread] = smallest;
    device::store(first, scratch + (threads + thread), threads);
  }

  template <class Scratch>
  QM_HD void unite(const EndStep& kernel, int first, int end, int stride, Scratch scratch) {
    double smallest = scratch[first];
    EdgeFound edge = load_edge_found(scratch + (threads + first), threads);
    for (int t = first + stride; t < end; t += stride) {
      smallest = physics::smaller(smallest, scratch[t]);
      edge = first_of(edge, load_edge_found(scratch + (threads + t), threads));
    }
    store(kernel, first, scratch, smallest, edge);
  }

  /// What waves allow that boundaries may send in, see engine::Forcing::boundary_bound, s.
  QM_HD double step_of_boundaries(const EndStep& kernel, const Thread& thread) {
    const RunClock& run = kernel.clock->run;
    const kernels::CellColumns& cells = kernel.tables.cells;
    double rate = 0.0;
    for (int i = thread.number; i < kernel.forcing.imposing_count; i += thread.count) {
      const ForcingTables::Imposing& of = kernel.forcing.imposing[i];
      const kernels::BoundaryEdge& boundary = kernel.tables.boundaries[of.boundary];
      const double imposed =
          of.by_caller || of.series < 0
              ? of.value
              : device::value_of_series(kernel.forcing, kernel.forcing.series[of.series], false,
                                        run.t + run.dt);
      const double speed = boundary.kind == kernels::BoundaryKind::discharge
                               ? physics::wave_speed_of_discharge(imposed)
                               : physics::wave_speed_of_level(imposed, cells.bed[boundary.cell]);
      rate = physics::larger(rate, speed / cells.char_length[boundary.cell]);
    }
    return physics::step_of_crossing_rate(rate);
  }

  /// The clock after a step that found this stable one, s.
  QM_HD void go_on(StepClock& clock, double stable_step) {
    RunClock& run = clock.run;
    const double applied = run.dt;
    run.begun = run.t;
    run.dt = clock.till.cfl * stable_step;
    run.t += clock.till.advances_by_new_step ? run.dt : applied;
    ++run.steps;
    const bool is_before_end =
        run.t < clock.till.t_stop && run.t < clock.till.t_end && run.steps < clock.till.last_step;
    const bool can_go_on = run.dt > clock.till.smallest_step && run.t + run.dt != run.t;
    clock.halted = !is_before_end || !can_go_on || clock.not_hyperbolic.edge != HUGE_VAL;
  }
};

}  // namespace engine::device
