#include "engine/centers.hpp"

#include "engine/Range.hpp"

namespace engine {

CentersOfCells centers_of(const cases::Mesh& mesh, cases::Number cells, ThreadTeam& team) {
  const std::size_t count = cases::at(cells);
  CentersOfCells centers = {std::vector<double>(count), std::vector<double>(count)};
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), count);
    for (int k = share.begin; k < share.end; ++k) {
      const physics::SpacePoint center = mesh.center_of(k);
      centers.x[cases::at(k)] = center.x;
      centers.y[cases::at(k)] = center.y;
    }
  });
  return centers;
}

}  // namespace engine
