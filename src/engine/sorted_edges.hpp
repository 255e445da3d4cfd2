// The edges of a mesh in the order of the patches that compute them.
#pragma once

#include <vector>

#include "case/Mesh.hpp"
#include "engine/Range.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/aligned_vector.hpp"

namespace engine {

/// Edges by the patch of the lower of their cells, those of the first patch, of the second, ...
struct EdgesOfPatches {
  std::vector<cases::Number> edges;
  std::vector<int> begins;  ///< of the patches, and the end

  Range of(int patch) const { return {begins[at(patch)], begins[at(patch) + 1]}; }
};

struct SortedEdges {
  EdgesOfPatches within;      ///< a patch
  EdgesOfPatches cut;         ///< between a patch and a later one, or a ghost
  EdgesOfPatches boundaries;  ///< edges with a boundary condition
};

/// The edges of the cells whose places are below `owned`; boundaries of their left cells. The edges
/// of every patch come along the lower of their cells, then along the higher one.
SortedEdges sort_edges(const cases::Mesh& mesh, const std::vector<int>& place, int owned,
                       int cells_per_patch, ThreadTeam& team);

}  // namespace engine
