// What the threads of a block find in the cells of a patch after its step, and how it is brought
// together.
#pragma once

#include "engine/device/EdgeFound.hpp"
#include "engine/device/launch.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/stable_step.hpp"

namespace engine::device {

struct PatchFindings {
  double smallest_step = physics::unbounded_step;  ///< s
  int changing_cells = 0;                          ///< those that may change without inflow
  physics::FlowExtremes extremes;                  ///< where notes are taken
  EdgeFound not_hyperbolic;                        ///< where it is looked for
};

QM_HD inline PatchFindings united(const PatchFindings& a, const PatchFindings& b) {
  return {physics::smaller(a.smallest_step, b.smallest_step), a.changing_cells + b.changing_cells,
          physics::united(a.extremes, b.extremes), first_of(a.not_hyperbolic, b.not_hyperbolic)};
}

/// The findings of the threads of a block in scratch, word by word. Only what is asked for has
/// words.
struct FindingsInScratch {
  int threads;
  bool with_extremes, with_not_hyperbolic;

  QM_HD int words_of(const FindingsInScratch& layout) {
    return layout.threads * (2 + (layout.with_extremes ? 4 : 0) +
                             (layout.with_not_hyperbolic ? EdgeFound::words : 0));
  }

  template <class Scratch>
  QM_HD Scratch edge_words(const FindingsInScratch& layout, Scratch scratch, int thread) {
    return scratch + ((layout.with_extremes ? 6 : 2) * layout.threads + thread);
  }

  template <class Scratch>
  QM_HD void store_cells(const FindingsInScratch& layout, Scratch scratch, int thread,
                         const PatchFindings& findings) {
    const int n = layout.threads;
    scratch[thread] = findings.smallest_step;
    scratch[n + thread] = findings.changing_cells;
    if (!layout.with_extremes) return;
    scratch[2 * n + thread] = findings.extremes.speed_squared;
    scratch[3 * n + thread] = findings.extremes.speed_squared_per_depth;
    scratch[4 * n + thread] = findings.extremes.not_finite;
    scratch[5 * n + thread] = findings.extremes.films;
  }
  template <class Scratch>
  QM_HD void store_edge(const FindingsInScratch& layout, Scratch scratch, int thread,
                        const EdgeFound& found) {
    if (!layout.with_not_hyperbolic) return;
    store(found, edge_words(layout, scratch, thread), layout.threads);
  }

  template <class Scratch>
  QM_HD PatchFindings load(const FindingsInScratch& layout, Scratch scratch, int thread) {
    const int n = layout.threads;
    PatchFindings findings;
    findings.smallest_step = scratch[thread];
    findings.changing_cells = static_cast<int>(scratch[n + thread]);
    if (layout.with_extremes) {
      findings.extremes = {scratch[2 * n + thread], scratch[3 * n + thread],
                           static_cast<int>(scratch[4 * n + thread]),
                           static_cast<int>(scratch[5 * n + thread])};
    }
    if (layout.with_not_hyperbolic) {
      findings.not_hyperbolic = load_edge_found(edge_words(layout, scratch, thread), n);
    }
    return findings;
  }

  /// What the threads of a block have found, united in two phases: by groups of threads, then all.
  static constexpr int groups = 16;
  template <class Scratch>
  QM_HD void unite_group(const FindingsInScratch& layout, Scratch scratch, const Thread& thread) {
    if (thread.number >= groups) return;
    const PatchFindings of_group = of_threads(layout, scratch, thread.number, thread.count, groups);
    store_cells(layout, scratch, thread.number, of_group);
    store_edge(layout, scratch, thread.number, of_group.not_hyperbolic);
  }
  /// To be called by one thread.
  template <class Scratch>
  QM_HD PatchFindings of_groups(const FindingsInScratch& layout, Scratch scratch) {
    return of_threads(layout, scratch, 0, groups, 1);
  }

 private:
  /// The findings of every `stride`-th thread from one on, together.
  template <class Scratch>
  QM_HD PatchFindings of_threads(const FindingsInScratch& layout, Scratch scratch, int first,
                                 int end, int stride) {
    PatchFindings findings = load(layout, scratch, first);
    for (int t = first + stride; t < end; t += stride) {
      findings = united(findings, load(layout, scratch, t));
    }
    return findings;
  }
};

}  // namespace engine::device
