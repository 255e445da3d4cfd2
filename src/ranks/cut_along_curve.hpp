// The cells of a mesh shared out among ranks.
#pragma once

#include <vector>

#include "case/Mesh.hpp"

namespace ranks {

/// Runs of one length along a Hilbert curve over the cells, each in ascending order of its numbers.
/// There are as many as ranks are wanted, at least 1; fewer where there are fewer cells.
std::vector<std::vector<cases::Number>> cut_along_curve(const cases::Mesh& mesh, int ranks);

}  // namespace ranks
