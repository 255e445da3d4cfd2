// Coordinates so large that their sums and products overflow: nothing can be computed with them.
#pragma once

#include <span>
#include <string>

#include "case/Mesh.hpp"

namespace cases {

/// Whether the centre of a cell, its area and its perimeter are finite numbers.
bool is_finite(const CellGeometry& cell);

/// What is wrong with the nodes of a cell or an edge whose geometry is not finite, for a message.
std::string overflow_of(const Mesh& mesh, std::span<const Number> nodes);

}  // namespace cases
