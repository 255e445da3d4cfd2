// The first edge of the model on which the coupled system of water and bed is not hyperbolic, as
// the threads of a block look for it: each among its own edges.
#pragma once

#include <cmath>

#include "engine/device/TableView.hpp"

namespace engine::device {

/// Numbers all, so that they pass through scratch.
struct EdgeFound {
  double edge = HUGE_VAL;              ///< number in the model; HUGE_VAL: none
  double place = 0.0;                  ///< of the cell
  double h = 0.0, qx = 0.0, qy = 0.0;  ///< m, m2/s
  static constexpr int words = 5;      ///< in scratch
};

QM_HD inline EdgeFound first_of(const EdgeFound& a, const EdgeFound& b) {
  return b.edge < a.edge ? b : a;
}

/// Into the words of a thread, which stand `stride` apart, and from there.
template <class Scratch>
QM_HD inline void store(const EdgeFound& found, Scratch words, int stride) {
  words[0] = found.edge;
  words[stride] = found.place;
  words[2 * stride] = found.h;
  words[3 * stride] = found.qx;
  words[4 * stride] = found.qy;
}
template <class Scratch>
QM_HD inline EdgeFound load_edge_found(Scratch words, int stride) {
  return {words[0], words[stride], words[2 * stride], words[3 * stride], words[4 * stride]};
}

/// What was found so far, or the edge of that number between the cells l and r. On an edge the left
/// cell is the one that is told of.
QM_HD inline EdgeFound first_of(const EdgeFound& so_far, const kernels::CellColumns& cells, int l,
                                int r, const physics::Edge& edge, int number,
                                const kernels::StepValues& step) {
  const bool left = kernels::is_hyperbolic(cells, l, edge, step);
  if (left && kernels::is_hyperbolic(cells, r, edge, step)) return so_far;
  const int i = left ? r : l;
  return first_of(so_far, {static_cast<double>(number), static_cast<double>(i), cells.h[i],
                           cells.qx[i], cells.qy[i]});
}

QM_HD inline bool may_not_be_hyperbolic(const kernels::Radicands& radicands) {
  return radicands.left < 0.0 || radicands.right < 0.0;
}

}  // namespace engine::device
