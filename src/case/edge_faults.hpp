// Edges that are well-formed and probably wrong: each rule once, for the warnings of a run and for
// programs that look at a case before it runs.
#pragma once

#include "case/Mesh.hpp"

namespace cases {

struct EdgeFaults {
  bool has_no_length;   ///< its flux is not a number
  bool points_inwards;  ///< its normal points into its left cell
  bool is_two_sided;    ///< it has a boundary condition and also a right cell, which gets no flux
};

/// `boundary` is the condition on the edge; null without one.
EdgeFaults faults_of(const Mesh& mesh, Number edge, const Boundary* boundary);

}  // namespace cases
