#include "library/mesh_of_case.hpp"

namespace quillmere {

namespace {

using cases::at;
using cases::Number;

std::vector<Edge> edges_of(const cases::Mesh& mesh) {
  std::vector<Edge> edges;
  edges.reserve(at(mesh.n_edges()));
  for (Number e = 0; e < mesh.n_edges(); ++e) {
    edges.push_back({mesh.left[at(e)], mesh.right[at(e)], mesh.node1[at(e)], mesh.node2[at(e)],
                     EdgeKind::interior});
  }
  for (const cases::Boundary& boundary : mesh.boundaries) {
    Edge& edge = edges[at(boundary.edge)];
    edge.kind = static_cast<EdgeKind>(boundary.code);
    edge.value = boundary.value;
    edge.series = boundary.series;
  }
  return edges;
}

}  // namespace

Mesh mesh_of(const cases::Mesh& mesh) {
  std::vector<std::int64_t> first_node = mesh.first_node;
  if (first_node.empty()) {
    for (std::int64_t cell = 0; cell <= mesh.n_cells(); ++cell) first_node.push_back(3 * cell);
  }
  return {mesh.x, mesh.y, mesh.z, mesh.cell_nodes, std::move(first_node), edges_of(mesh)};
}

}  // namespace quillmere
