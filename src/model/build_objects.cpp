#include "model/build_objects.hpp"

#include <vector>

#include "globals/edge_codes.hpp"

namespace {

using cases::at;
using cases::Number;

void build_nodes(PhysicalModel& model, const cases::Mesh& mesh) {
  model.n_nodes = mesh.n_nodes();
  model.mesh_nodes.reserve(at(mesh.n_nodes()));
  for (std::size_t i = 0; i < at(mesh.n_nodes()); ++i) {
    model.mesh_nodes.emplace_back(mesh.x[i], mesh.y[i], mesh.z[i]);
  }
}

void build_cells(PhysicalModel& model, const cases::Mesh& mesh) {
  model.n_cells = mesh.n_cells();
  model.cells.reserve(at(mesh.n_cells()));
  std::vector<const MeshNode*> nodes;
  for (Number i = 0; i < mesh.n_cells(); ++i) {
    nodes.clear();
    for (const Number node : mesh.nodes_of(i)) nodes.push_back(&model.mesh_nodes[at(node)]);
    model.build_cell(i, nodes);
  }
}

void build_interfaces(PhysicalModel& model, const cases::Case& contents) {
  const cases::Mesh& mesh = contents.mesh;
  model.n_interfaces = mesh.n_edges();
  model.interfaces.reserve(at(mesh.n_edges()));
  auto boundary = mesh.boundaries.begin();
  for (Number i = 0; i < mesh.n_edges(); ++i) {
    const bool is_boundary = boundary != mesh.boundaries.end() && boundary->edge == i;
    const int code = is_boundary ? boundary->code : edge_code::interior;
    const bool has_series = is_boundary && boundary->series >= 0;
    model.build_interface(edge_code::scheme_lhllc, i, mesh.left[at(i)], mesh.right[at(i)],
                          model.mesh_nodes[at(mesh.node1[at(i)])],
                          model.mesh_nodes[at(mesh.node2[at(i)])], code,
                          is_boundary ? boundary->value : 0.0,
                          has_series ? contents.series[at(boundary->series)].file : "");
    if (is_boundary) ++boundary;
  }
}

}  // namespace

void build_mesh(PhysicalModel& model, const cases::Case& contents) {
  build_nodes(model, contents.mesh);
  build_cells(model, contents.mesh);
  build_interfaces(model, contents);
  for (const auto& cell : model.cells) {
    cell->sort_interfaces_by_tag();
    cell->set_local_index_to_edges();
  }
}
