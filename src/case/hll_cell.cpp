#include "case/hll_cell.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "case/boundary_kinds.hpp"
#include "case/initial_state.hpp"
#include "physics/primitive_water.hpp"

namespace cases {

namespace {

struct Corners {
  physics::PlanPoint of[3];
};

Corners corners_of(const Mesh& mesh, Number cell) {
  const std::array<Number, 3> n = nodes_counter_clockwise(mesh, cell);
  return {{mesh.plan_node(n[0]), mesh.plan_node(n[1]), mesh.plan_node(n[2])}};
}

/// Whether the slope of the level goes on beyond a boundary. Where a discharge is imposed nothing
/// holds the level out there: it would feed itself.
bool goes_on_beyond(const Mesh& mesh, Number edge) {
  const BoundaryKind& kind = *boundary_kind(mesh.boundary_on(edge)->code);
  return kind.code != edge_code::wall && !kind.imposes_discharge();
}

/// From the centre of a cell to that of its neighbour at side k, or to its own image behind a wall
/// or an imposed discharge. Zero at other boundaries, across which no slope is known.
physics::PlanVector offset_at_side(const Mesh& mesh, const TriangleSides& sides, Number cell, int k,
                                   const physics::PlanVector& r) {
  const TriangleSide& side = sides[at(k)];
  if (side.neighbour >= 0) {
    return physics::between_centers(corners_of(mesh, cell).of, corners_of(mesh, side.neighbour).of);
  }
  if (side.edge >= 0 && goes_on_beyond(mesh, side.edge)) return {0.0, 0.0};
  return physics::to_mirror_image(r, edge_at_side(mesh, cell, k));
}

physics::SlopeWeights weights_of(const Mesh& mesh, const TriangleSides& sides, Number cell,
                                 const physics::HllTriangle& shape) {
  const physics::PlanVector r2 = {-shape.r0.x - shape.r1.x, -shape.r0.y - shape.r1.y};
  return physics::least_squares_weights(offset_at_side(mesh, sides, cell, 0, shape.r0),
                                        offset_at_side(mesh, sides, cell, 1, shape.r1),
                                        offset_at_side(mesh, sides, cell, 2, r2));
}

physics::PlanVector slope_of_nodes(const Mesh& mesh, Number cell) {
  const std::array<Number, 3> n = nodes_counter_clockwise(mesh, cell);
  const auto node = [&](std::size_t i) {
    return physics::SpacePoint{mesh.x[at(n[i])], mesh.y[at(n[i])], mesh.z[at(n[i])]};
  };
  return physics::slope_of_plane(node(0), node(1), node(2));
}

/// A bed file says nothing of the nodes: the slope of the levels of the cells, limited so that no
/// side leaves their range.
physics::PlanVector slope_of_bed_file(const Case& contents, const TriangleSides& sides, Number cell,
                                      const physics::SlopeWeights& weights,
                                      const physics::HllTriangle& shape) {
  constexpr double within_range = 1.0;
  const double z = bed_rock_of(contents, cell);
  const auto difference = [&](std::size_t k) {
    return sides[k].neighbour < 0 ? 0.0 : bed_rock_of(contents, sides[k].neighbour) - z;
  };
  return physics::limited_slope({difference(0), difference(1), difference(2)}, weights, shape,
                                within_range);
}

}  // namespace

void require_rain_that_falls(const Case& contents) {
  for (const Hyetogram& rain : contents.rain) {
    for (const double intensity : rain.intensities) {
      if (intensity >= 0.0) continue;
      throw std::runtime_error(
          "Error. The flux scheme " + std::string(kind_of(contents.scheme).name) +
          " takes no rain below zero, as hyetogram " + std::to_string(rain.id) + " has it.");
    }
  }
}

std::vector<TriangleSides> sides_for_hll(const Case& contents) {
  require_rain_that_falls(contents);
  return sides_of_triangles(contents.mesh, kind_of(contents.scheme).name);
}

physics::Edge edge_at_side(const Mesh& mesh, Number cell, int k) {
  const Corners corners = corners_of(mesh, cell);
  return physics::edge_between(corners.of[k], corners.of[(k + 1) % 3]);
}

HllCellOfCase hll_cell_of(const Case& contents, const std::vector<TriangleSides>& sides,
                          Number cell) {
  const Mesh& mesh = contents.mesh;
  const Corners corners = corners_of(mesh, cell);
  const physics::HllTriangle shape =
      physics::hll_triangle(corners.of[0], corners.of[1], corners.of[2]);
  const CellGeometry geometry = mesh.geometry_of(cell);
  double shortest = geometry.char_length();
  for (const TriangleSide& side : sides[at(cell)]) {
    if (side.neighbour < 0) continue;
    shortest = std::min(shortest, mesh.geometry_of(side.neighbour).char_length());
  }
  const physics::SlopeWeights weights = weights_of(mesh, sides[at(cell)], cell, shape);
  const bool has_bed_file = !contents.fields.bed.empty();
  const physics::PlanVector slope =
      has_bed_file ? slope_of_bed_file(contents, sides[at(cell)], cell, weights, shape)
                   : slope_of_nodes(mesh, cell);
  const std::vector<double>& manning = contents.fields.manning;
  return {{shape, slope, 1.0 / geometry.area, geometry.perimeter / 3.0},
          weights,
          bed_rock_of(contents, cell),
          1.0 / shortest,
          manning.empty() ? 0.0 : physics::manning_resistance(manning[at(cell)])};
}

}  // namespace cases
