// Where cells stand in the plan, for orders along a curve.
#pragma once

#include <vector>

#include "case/Mesh.hpp"
#include "engine/ThreadTeam.hpp"

namespace engine {

struct CentersOfCells {
  std::vector<double> x, y;  ///< m
};

/// Of the first cells of a mesh.
CentersOfCells centers_of(const cases::Mesh& mesh, cases::Number cells, ThreadTeam& team);

}  // namespace engine
