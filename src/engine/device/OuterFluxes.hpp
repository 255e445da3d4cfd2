// The kernel of the fluxes around the patches that take part: over the cut edges and boundaries
// that these and their neighbours list, into the outer slots. A block to a patch.
#pragma once

#include "engine/device/StepClock.hpp"
#include "engine/device/launch.hpp"

namespace engine::device {

template <bool has_bed>
struct OuterFluxes {
  static constexpr int phases = has_bed ? 2 : 1;
  static constexpr int threads = 64;
  static constexpr int blocks_at_once = has_bed ? 8 : 12;

  TableView tables;
  const char* takes_part;  ///< of the patches
  const int* neighbours;
  const StepClock* clock;
  kernels::StepValues step;  ///< all but what changes from step to step
  EdgeFound* found;          ///< of the patches; null: nobody looks for it

  int scratch_words() const { return found != nullptr ? EdgeFound::words * threads : 0; }

  QM_HD bool has_work(const OuterFluxes& kernel, int patch) {
    if (kernel.clock->halted) return false;
    bool wanted = kernel.takes_part[patch] != 0;
    const PatchView& view = kernel.tables.patches[patch];
    for (int k = 0; k < view.neighbours; ++k) {
      wanted = wanted || kernel.takes_part[kernel.neighbours[view.first_neighbour + k]] != 0;
    }
    return wanted;
  }

  template <class Scratch>
  QM_HD void run(Phase<0>, const OuterFluxes& kernel, const Thread& thread, Scratch scratch) {
    const PatchView& patch = kernel.tables.patches[thread.block];
    const EdgeFound first = kernel.tables.cells.eta != nullptr
                                ? over_cut_edges<true>(kernel, patch, thread)
                                : over_cut_edges<false>(kernel, patch, thread);
    if (kernel.found != nullptr) store(first, scratch + thread.number, threads);
    over_boundaries(kernel, patch, thread);
  }

  /// The first thread sees through what all have found.
  template <class Scratch>
  QM_HD void run(Phase<1>, const OuterFluxes& kernel, const Thread& thread, Scratch scratch) {
    if (kernel.found == nullptr || thread.number > 0) return;
    EdgeFound first;
    for (int t = 0; t < thread.count; ++t) {
      first = first_of(first, load_edge_found(scratch + t, threads));
    }
    kernel.found[thread.block] = first;
  }

 private:
  template <bool eta_given>
  QM_HD EdgeFound over_cut_edges(const OuterFluxes& kernel, const PatchView& patch,
                                 const Thread& thread) {
    using Given = kernels::Given<eta_given, false>;
    const TableView& tables = kernel.tables;
    const kernels::SlotColumns right = slots_from<has_bed>(tables.outer, tables.cut_edge_count);
    EdgeFound first;
    const int end = patch.first_cut_edge + patch.cut_edges;
    for (int e = patch.first_cut_edge + thread.number; e < end; e += thread.count) {
      const physics::Edge edge = edge_of(tables.cut_edges, e);
      const int l = tables.cut_edges.left[e], r = tables.cut_edges.right[e];
      if constexpr (has_bed) {
        const kernels::Radicands radicands = kernels::flux_of_water_and_bed<Given>(
            tables.cells, l, r, edge, kernel.step, tables.outer, right, e);
        if (kernel.found != nullptr && may_not_be_hyperbolic(radicands)) {
          first = first_of(first, tables.cells, l, r, edge, tables.cut_edge_number[e], kernel.step);
        }
      } else {
        kernels::flux_of_water<Given>(tables.cells, l, r, edge, kernel.step, tables.outer, right,
                                      e);
      }
    }
    return first;
  }

  QM_HD void over_boundaries(const OuterFluxes& kernel, const PatchView& patch,
                             const Thread& thread) {
    const TableView& tables = kernel.tables;
    for (int k = thread.number; k < patch.boundaries; k += thread.count) {
      const int b = patch.first_boundary + k;
      kernels::flux_of_boundary(tables.cells, tables.boundaries[b], kernel.step, tables.outer,
                                2 * tables.cut_edge_count + b);
    }
  }
};

}  // namespace engine::device
