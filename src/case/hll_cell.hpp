// A triangle of a case as the second-order scheme takes it.
#pragma once

#include "case/Case.hpp"
#include "case/triangle_sides.hpp"
#include "physics/hll_edge_states.hpp"

namespace cases {

/// What does not change in a run.
struct HllCellOfCase {
  physics::HllCell cell;
  physics::SlopeWeights weights;
  double bed;                ///< level, m
  double reciprocal_length;  ///< of the shortest cell among it and its neighbours, 1/m
  double resistance;         ///< of the bed, m^(1/3)
};

/// The sides of the cells of a case that asks for an HLL scheme. Throws std::runtime_error as
/// sides_of_triangles and require_rain_that_falls do.
std::vector<TriangleSides> sides_for_hll(const Case& contents);

/// Throws std::runtime_error where rain is below zero: the water would have to be there.
void require_rain_that_falls(const Case& contents);

/// Reads the neighbours of the cell too; nothing else of the other cells, so that any order will
/// do.
HllCellOfCase hll_cell_of(const Case& contents, const std::vector<TriangleSides>& sides,
                          Number cell);

/// The edge at side k of a cell; its normal leads out of it, whichever way the file has it.
physics::Edge edge_at_side(const Mesh& mesh, Number cell, int k);

}  // namespace cases
