#include "case/triangle_sides.hpp"

#include <stdexcept>
#include <string>
#include <utility>

namespace cases {

namespace {

[[noreturn]] void refuse(const char* scheme, const std::string& what) {
  throw std::runtime_error("Error. The flux scheme " + std::string(scheme) + " " + what + ".");
}

std::string cell_name(Number cell) { return "cell " + std::to_string(cell); }

void require_triangle(const Mesh& mesh, Number cell, const char* scheme) {
  const std::size_t nodes = mesh.nodes_of(cell).size();
  if (nodes != 3) {
    refuse(scheme, "takes triangles alone, and " + cell_name(cell) + " (counted from 0) has " +
                       std::to_string(nodes) + " nodes");
  }
  if (!(mesh.geometry_of(cell).area > 0.0)) {
    refuse(scheme, "cannot take " + cell_name(cell) + " (counted from 0), which has no area");
  }
}

/// The side of a cell between two nodes; -1 if it has none.
int side_between(const Mesh& mesh, Number cell, Number a, Number b) {
  const std::array<Number, 3> nodes = nodes_counter_clockwise(mesh, cell);
  for (std::size_t k = 0; k < 3; ++k) {
    const Number from = nodes[k], to = nodes[(k + 1) % 3];
    if ((from == a && to == b) || (from == b && to == a)) return static_cast<int>(k);
  }
  return -1;
}

/// Puts edges at the sides of their cells.
class SideFinder {
 public:
  SideFinder(const Mesh& mesh, const char* scheme)
      : mesh_(mesh), scheme_(scheme), sides_(at(mesh.n_cells())) {}

  std::vector<TriangleSides> find() {
    for (Number cell = 0; cell < mesh_.n_cells(); ++cell) require_triangle(mesh_, cell, scheme_);
    auto boundary = mesh_.boundaries.begin();
    for (Number edge = 0; edge < mesh_.n_edges(); ++edge) {
      const bool is_boundary = boundary != mesh_.boundaries.end() && boundary->edge == edge;
      if (is_boundary) ++boundary;
      add(edge, is_boundary);
    }
    return std::move(sides_);
  }

 private:
  void add(Number edge, bool is_boundary) {
    const Number left = mesh_.left[at(edge)], right = mesh_.right[at(edge)];
    const int l = place(edge, left);
    if (is_boundary) return;
    const int r = place(edge, right);
    sides_[at(left)][at(l)].neighbour = right;
    sides_[at(left)][at(l)].neighbour_side = r;
    sides_[at(right)][at(r)].neighbour = left;
    sides_[at(right)][at(r)].neighbour_side = l;
  }

  int place(Number edge, Number cell) {
    const int k = side_between(mesh_, cell, mesh_.node1[at(edge)], mesh_.node2[at(edge)]);
    const std::string both = "edge " + std::to_string(edge) + " and " + cell_name(cell);
    if (k < 0) {
      refuse(scheme_, "cannot take " + both + " (counted from 0): the edge is no side of the cell");
    }
    TriangleSide& side = sides_[at(cell)][at(k)];
    if (side.edge >= 0) {
      refuse(scheme_, "cannot take " + both + " (counted from 0): edge " +
                          std::to_string(side.edge) + " lies at the same side");
    }
    side.edge = edge;
    return k;
  }

  const Mesh& mesh_;
  const char* scheme_;
  std::vector<TriangleSides> sides_;
};

}  // namespace

std::array<Number, 3> nodes_counter_clockwise(const Mesh& mesh, Number cell) {
  const std::span<const Number> n = mesh.nodes_of(cell);
  const double area =
      physics::twice_signed_area(mesh.plan_node(n[0]), mesh.plan_node(n[1]), mesh.plan_node(n[2]));
  if (area < 0.0) return {n[0], n[2], n[1]};
  return {n[0], n[1], n[2]};
}

int side_at_edge(const TriangleSides& sides, Number edge) {
  int side = 0;
  while (side < 2 && sides[at(side)].edge != edge) ++side;
  return side;
}

std::vector<TriangleSides> sides_of_triangles(const Mesh& mesh, const char* scheme) {
  return SideFinder(mesh, scheme).find();
}

}  // namespace cases
