#include "engine/centers.hpp"

#include "engine/Range.hpp"

namespace engine {

CentersOfCells centers_of(const cases::Mesh& mesh, const std::vector<cases::Number>& cells,
                          ThreadTeam& team) {
  const std::size_t count = cells.empty() ? cases::at(mesh.n_cells()) : cells.size();
  CentersOfCells centers = {std::vector<double>(count), std::vector<double>(count)};
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), count);
    for (int k = share.begin; k < share.end; ++k) {
      const cases::Number cell = cells.empty() ? k : cells[cases::at(k)];
      const physics::SpacePoint center = mesh.center_of(cell);
      centers.x[cases::at(k)] = center.x;
      centers.y[cases::at(k)] = center.y;
    }
  });
  return centers;
}

}  // namespace engine
