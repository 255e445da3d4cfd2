#include "engine/Subset.hpp"

#include <cstdint>
#include <utility>

#include "engine/aligned_vector.hpp"

namespace engine {

namespace {

using cases::Number;

/// Cells outside a set, in ascending order, that a number of steps from neighbour to neighbour
/// reach from within. No water passes an edge with a boundary condition.
std::vector<Number> rings_around(const cases::Mesh& mesh, std::vector<std::uint8_t> is_inside,
                                 int rings) {
  std::vector<std::uint8_t> is_reached = is_inside;
  for (int ring = 0; ring < rings; ++ring) {
    const std::vector<std::uint8_t> before = is_reached;
    auto boundary = mesh.boundaries.begin();
    for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
      if (boundary != mesh.boundaries.end() && boundary->edge == edge) {
        ++boundary;
        continue;
      }
      const std::size_t left = at(mesh.left[at(edge)]), right = at(mesh.right[at(edge)]);
      if (before[left] != 0) is_reached[right] = 1;
      if (before[right] != 0) is_reached[left] = 1;
    }
  }
  std::vector<Number> cells;
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    if (is_reached[at(cell)] != 0 && is_inside[at(cell)] == 0) cells.push_back(cell);
  }
  return cells;
}

}  // namespace

Subset subset_of(const cases::Mesh& mesh, std::vector<Number> owned, int rings) {
  std::vector<std::uint8_t> is_owned(at(mesh.n_cells()), 0), is_foreign(at(mesh.n_cells()), 1);
  for (const Number cell : owned) {
    is_owned[at(cell)] = 1;
    is_foreign[at(cell)] = 0;
  }
  Subset subset;
  subset.owned = std::move(owned);
  subset.ghosts = rings_around(mesh, std::move(is_owned), rings);
  // Whom I reach in so many steps reaches me.
  subset.border = rings_around(mesh, std::move(is_foreign), rings);
  return subset;
}

}  // namespace engine
