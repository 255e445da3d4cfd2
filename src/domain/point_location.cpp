// Which cell contains a point.
#include "domain/Domain.hpp"

namespace {

/// Whether the point p lies in the triangle (center, a, b). Strict comparisons: a triangle that
/// runs counter-clockwise accepts its inside only, one that runs clockwise its sides too.
bool triangle_contains(const MeshNode& center, const MeshNode& node_a, const MeshNode& node_b,
                       double x, double y) {
  const MeshNode c(center.x - x, center.y - y, 0.0);
  const MeshNode a(node_a.x - x, node_a.y - y, 0.0);
  const MeshNode b(node_b.x - x, node_b.y - y, 0.0);
  const int count = (a.x * b.y > b.x * a.y) + (c.x * a.y > a.x * c.y) + (b.x * c.y > c.x * b.y);
  return count == 0 || count == 3;
}

}  // namespace

ComputationalCell* Domain::CellWithPoint(double x, double y) const {
  for (const auto& cell : model->cells) {
    for (int j = 0; j < cell->number_of_nodes(); ++j) {
      if (triangle_contains(cell->center, *cell->get_node(j), *cell->next_node(j), x, y)) {
        return cell.get();
      }
    }
  }
  return nullptr;
}
