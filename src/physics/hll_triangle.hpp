// What the second-order scheme knows of a triangle: the midpoints of its edges, its normals, the
// plane of its nodes, and the weights of a least-squares slope over its neighbours.
// Source: Barth and Jespersen (1989), AIAA 89-0366, for linear reconstruction on triangles.
#pragma once

#include "physics/cell_geometry.hpp"
#include "physics/edge_frame.hpp"

namespace physics {

/// A vector in plan: a distance (m), a velocity, or the slope of a quantity (its unit per m).
struct PlanVector {
  double x, y;
};

/// Local edge k of a cell runs from its node k to the next one, its nodes taken counter-clockwise
/// from the first of the file. r0 and r1 lead from the centre to the midpoints of edges 0 and 1, m;
/// that of edge 2 is -r0 - r1.
struct HllTriangle {
  PlanVector r0, r1;
};

/// One number for every local edge.
struct EdgeValues {
  double k0, k1, k2;
};

QM_HD inline double largest_of(const EdgeValues& v) { return larger(larger(v.k0, v.k1), v.k2); }
QM_HD inline double smallest_of(const EdgeValues& v) { return smaller(smaller(v.k0, v.k1), v.k2); }

/// The triangle of three nodes that run counter-clockwise; from differences, which lose no digits.
QM_HD inline HllTriangle hll_triangle(PlanPoint a, PlanPoint b, PlanPoint c) {
  const PlanVector ab = {b.x - a.x, b.y - a.y};
  const PlanVector ac = {c.x - a.x, c.y - a.y};
  return {{(ab.x - 2.0 * ac.x) / 6.0, (ab.y - 2.0 * ac.y) / 6.0},
          {(ab.x + ac.x) / 6.0, (ab.y + ac.y) / 6.0}};
}

/// How much a quantity of that slope differs between the edge midpoints and the centre. The three
/// sum to 0.
QM_HD inline EdgeValues at_midpoints(const HllTriangle& cell, const PlanVector& slope) {
  const double k0 = slope.x * cell.r0.x + slope.y * cell.r0.y;
  const double k1 = slope.x * cell.r1.x + slope.y * cell.r1.y;
  return {k0, k1, -k0 - k1};
}

/// Outward normals of the local edges, as long as these (m).
struct OutwardNormals {
  PlanVector k0, k1, k2;
};

QM_HD inline OutwardNormals outward_normals(const HllTriangle& cell) {
  const PlanVector r0 = cell.r0, r1 = cell.r1, r2 = {-r0.x - r1.x, -r0.y - r1.y};
  return {{2.0 * (r1.y - r2.y), -2.0 * (r1.x - r2.x)},
          {2.0 * (r2.y - r0.y), -2.0 * (r2.x - r0.x)},
          {2.0 * (r0.y - r1.y), -2.0 * (r0.x - r1.x)}};
}

/// Slope of the plane through three nodes; 0 for a cell without area.
QM_HD inline PlanVector slope_of_plane(const SpacePoint& a, const SpacePoint& b,
                                       const SpacePoint& c) {
  const double area = twice_signed_area({a.x, a.y}, {b.x, b.y}, {c.x, c.y});
  const double zb = b.z - a.z, zc = c.z - a.z;
  const bool flat = area == 0.0;
  const double reciprocal = flat ? 0.0 : 1.0 / (flat ? 1.0 : area);
  return {(zb * (c.y - a.y) - zc * (b.y - a.y)) * reciprocal,
          (zc * (b.x - a.x) - zb * (c.x - a.x)) * reciprocal};
}

/// From the centre of one triangle to that of another, m; from differences to a node of the first.
QM_HD inline PlanVector between_centers(const PlanPoint from[3], const PlanPoint to[3]) {
  const PlanPoint o = from[0];
  const double x = ((to[0].x - o.x) + (to[1].x - o.x) + (to[2].x - o.x)) -
                   ((from[1].x - o.x) + (from[2].x - o.x));
  const double y = ((to[0].y - o.y) + (to[1].y - o.y) + (to[2].y - o.y)) -
                   ((from[1].y - o.y) + (from[2].y - o.y));
  return {x / 3.0, y / 3.0};
}

/// From the centre of a cell to that of its mirror image at a wall, m; r leads to the midpoint of
/// the wall.
QM_HD inline PlanVector to_mirror_image(const PlanVector& r, const Edge& wall) {
  const double distance = r.x * wall.nx + r.y * wall.ny;
  return {2.0 * distance * wall.nx, 2.0 * distance * wall.ny};
}

/// Weights of the differences to the neighbours across the local edges in a slope, 1/m. Single
/// precision serves: a slope is limited anyway, and of equal values it is 0.
struct SlopeWeights {
  float x0, y0, x1, y1, x2, y2;
};

/// Weights of the least-squares slope for neighbours that far from the centre (m); {0, 0} for an
/// edge without one. Neighbours on one line (or a single one) give the slope along it.
QM_HD inline SlopeWeights least_squares_weights(const PlanVector& d0, const PlanVector& d1,
                                                const PlanVector& d2) {
  const double xx = d0.x * d0.x + d1.x * d1.x + d2.x * d2.x;
  const double xy = d0.x * d0.y + d1.x * d1.y + d2.x * d2.y;
  const double yy = d0.y * d0.y + d1.y * d1.y + d2.y * d2.y;
  const double trace = xx + yy, determinant = xx * yy - xy * xy;
  const bool regular = determinant > 1e-6 * trace * trace;
  const double divisor = regular ? determinant : (trace > 0.0 ? trace : 1.0);
  const double a = regular ? yy : 1.0, b = regular ? xy : 0.0, c = regular ? xx : 1.0;
  const auto weight = [](double number) { return static_cast<float>(number); };
  return {weight((a * d0.x - b * d0.y) / divisor), weight((c * d0.y - b * d0.x) / divisor),
          weight((a * d1.x - b * d1.y) / divisor), weight((c * d1.y - b * d1.x) / divisor),
          weight((a * d2.x - b * d2.y) / divisor), weight((c * d2.y - b * d2.x) / divisor)};
}

}  // namespace physics
