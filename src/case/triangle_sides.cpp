#include "case/triangle_sides.hpp"

#include <span>
#include <string>
#include <utility>

namespace cases {

namespace {

std::string cell_name(Number cell) { return "cell " + std::to_string(cell); }

/// Under which numbers users know cells and edges: their own, where nothing else is said.
struct NumbersInFiles {
  std::span<const Number> cells = {}, edges = {};

  Number cell(Number here) const { return cells.empty() ? here : cells[at(here)]; }
  Number edge(Number here) const { return edges.empty() ? here : edges[at(here)]; }
};

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
  SideFinder(const Mesh& mesh, const char* scheme, const NumbersInFiles& numbers = {})
      : mesh_(mesh), scheme_(scheme), numbers_(numbers), sides_(at(mesh.n_cells())) {}

  std::vector<TriangleSides> find() {
    for (Number cell = 0; cell < mesh_.n_cells(); ++cell) require_triangle(cell);
    auto boundary = mesh_.boundaries.begin();
    for (Number edge = 0; edge < mesh_.n_edges(); ++edge) {
      const bool is_boundary = boundary != mesh_.boundaries.end() && boundary->edge == edge;
      if (is_boundary) ++boundary;
      add(edge, is_boundary);
    }
    return std::move(sides_);
  }

 private:
  [[noreturn]] void refuse(const std::string& what, std::int64_t place) const {
    throw SideRefusal("Error. The flux scheme " + std::string(scheme_) + " " + what + ".", place);
  }

  void require_triangle(Number cell) const {
    const Number number = numbers_.cell(cell);
    const std::size_t nodes = mesh_.nodes_of(cell).size();
    if (nodes != 3) {
      refuse("takes triangles alone, and " + cell_name(number) + " (counted from 0) has " +
                 std::to_string(nodes) + " nodes",
             number);
    }
    if (!(mesh_.geometry_of(cell).area > 0.0)) {
      refuse("cannot take " + cell_name(number) + " (counted from 0), which has no area", number);
    }
  }

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

  /// Edges are looked at behind all cells, first with their left cells.
  [[noreturn]] void refuse_edge(Number edge, Number cell, const std::string& why) const {
    constexpr std::int64_t behind_all_cells = std::int64_t{1} << 32;
    const Number number = numbers_.edge(edge);
    const int side = mesh_.left[at(edge)] == cell ? 0 : 1;
    refuse("cannot take edge " + std::to_string(number) + " and " + cell_name(numbers_.cell(cell)) +
               " (counted from 0): " + why,
           behind_all_cells + 2 * std::int64_t{number} + side);
  }

  int place(Number edge, Number cell) {
    const int k = side_between(mesh_, cell, mesh_.node1[at(edge)], mesh_.node2[at(edge)]);
    if (k < 0) refuse_edge(edge, cell, "the edge is no side of the cell");
    TriangleSide& side = sides_[at(cell)][at(k)];
    if (side.edge >= 0) {
      const Number other = numbers_.edge(side.edge);
      refuse_edge(edge, cell, "edge " + std::to_string(other) + " lies at the same side");
    }
    side.edge = edge;
    return k;
  }

  const Mesh& mesh_;
  const char* scheme_;
  NumbersInFiles numbers_;
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

void require_triangles(const Part& part, const char* scheme) {
  SideFinder(part.contents.mesh, scheme, {part.cell_number, part.edge_number}).find();
}

}  // namespace cases
