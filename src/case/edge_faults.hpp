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

/// Of an edge from node a to node b, with the centre of its left cell.
EdgeFaults faults_of(physics::PlanPoint a, physics::PlanPoint b,
                     const physics::SpacePoint& left_center, bool has_boundary,
                     bool has_right_cell);
/// `boundary` is the condition on the edge; null without one.
EdgeFaults faults_of(const Mesh& mesh, Number edge, const Boundary* boundary);

}  // namespace cases
