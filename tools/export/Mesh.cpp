#include "export/Mesh.hpp"

#include <algorithm>

#include "case/MeshReader.hpp"
#include "physics/cell_geometry.hpp"
#include "support/Error.hpp"

namespace exports {

namespace {

void read_nodes(Mesh& mesh, const std::string& file) {
  utils::MeshReader reader(file, "node", 3);
  const int count = reader.get_number_of_elements();
  for (auto* coordinate : {&mesh.x, &mesh.y, &mesh.z}) {
    coordinate->reserve(static_cast<std::size_t>(count));
  }
  for (int i = 0; i < count; ++i) {
    const std::vector<double> node = reader.read_next_node(3);
    mesh.x.push_back(node[0] + mesh.origin[0]);
    mesh.y.push_back(node[1] + mesh.origin[1]);
    mesh.z.push_back(node[2]);
  }
}

/// Twice the area of a polygon, positive if its nodes run counter-clockwise.
double signed_double_area(const Mesh& mesh, std::span<const int> polygon) {
  const auto node_at = [&](int i) {
    const auto node = static_cast<std::size_t>(polygon[static_cast<std::size_t>(i)]);
    return physics::PlanPoint{mesh.x[node], mesh.y[node]};
  };
  return physics::twice_signed_cell_area(static_cast<int>(polygon.size()), node_at);
}

double mean(const std::vector<double>& values, std::span<const int> nodes) {
  double sum = 0.0;
  for (const int node : nodes) sum += values[static_cast<std::size_t>(node)];
  return sum / static_cast<double>(nodes.size());
}

void read_cells(Mesh& mesh, const std::string& file) {
  utils::MeshReader reader(file, "cell", 4);
  const int count = reader.get_number_of_elements();
  mesh.first.reserve(static_cast<std::size_t>(count) + 1);
  mesh.nodes.reserve(3 * static_cast<std::size_t>(count));
  for (auto* center : {&mesh.center_x, &mesh.center_y, &mesh.center_z}) {
    center->reserve(static_cast<std::size_t>(count));
  }
  mesh.first.push_back(0);
  for (int i = 0; i < count; ++i) {
    std::vector<int> cell = reader.read_next_cell(static_cast<int>(mesh.n_nodes()));
    if (signed_double_area(mesh, cell) < 0.0) std::reverse(cell.begin() + 1, cell.end());
    mesh.nodes.insert(mesh.nodes.end(), cell.begin(), cell.end());
    mesh.first.push_back(static_cast<int>(mesh.nodes.size()));
    mesh.center_x.push_back(mean(mesh.x, cell));
    mesh.center_y.push_back(mean(mesh.y, cell));
    mesh.center_z.push_back(mean(mesh.z, cell));
  }
  if (count == 0) throw tools::Error("The file " + file + " holds no cell.");
}

}  // namespace

double Mesh::area_of(std::size_t cell) const {
  return 0.5 * signed_double_area(*this, nodes_of(cell));
}

Mesh read_mesh(const std::string& nodes_file, const std::string& cells_file,
               const std::array<double, 2>& origin) {
  Mesh mesh;
  mesh.origin = origin;
  read_nodes(mesh, nodes_file);
  read_cells(mesh, cells_file);
  return mesh;
}

Edges read_edges(const std::string& edges_file, const Mesh& mesh) {
  utils::MeshReader reader(edges_file, "edge", 5);
  Edges edges;
  for (int i = 0; i < reader.get_number_of_elements(); ++i) {
    const auto [left, right, node1, node2, code, value, file] =
        reader.read_next_edge(static_cast<int>(mesh.n_nodes()), static_cast<int>(mesh.n_cells()));
    edges.nodes.push_back({node1, node2});
    if (right < 0) edges.boundary.push_back({i, code, value, file});
  }
  return edges;
}

Triangulation triangulate(const Mesh& mesh) {
  Triangulation triangles;
  triangles.nodes.reserve(mesh.n_cells());
  triangles.cell.reserve(mesh.n_cells());
  for (std::size_t i = 0; i < mesh.n_cells(); ++i) {
    const std::span<const int> nodes = mesh.nodes_of(i);
    for (std::size_t k = 1; k + 1 < nodes.size(); ++k) {
      triangles.nodes.push_back({nodes[0], nodes[k], nodes[k + 1]});
      triangles.cell.push_back(static_cast<int>(i));
    }
  }
  return triangles;
}

Extent extent_of(const Mesh& mesh) {
  const auto [west, east] = std::minmax_element(mesh.x.begin(), mesh.x.end());
  const auto [south, north] = std::minmax_element(mesh.y.begin(), mesh.y.end());
  return {*west, *east, *south, *north};
}

}  // namespace exports
