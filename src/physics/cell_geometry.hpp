// Geometry of a cell, from coordinates in m.
#pragma once

#include <cmath>

#include "physics/arithmetic.hpp"

namespace physics {

struct PlanPoint {
  double x, y;
};

struct SpacePoint {
  double x, y, z;
};

/// Distance in plan, m.
QM_HD inline double plan_distance(PlanPoint a, PlanPoint b) {
  return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

/// Mean of the n vertices of a cell; not the centroid of its area.
template <class NodeAt>
QM_HD SpacePoint cell_center(int n, const NodeAt& node_at) {
  SpacePoint sum{0.0, 0.0, 0.0};
  for (int i = 0; i < n; ++i) {
    const SpacePoint node = node_at(i);
    sum = {sum.x + node.x, sum.y + node.y, sum.z + node.z};
  }
  return {sum.x / n, sum.y / n, sum.z / n};
}

/// Length of the sides of a cell in plan, m.
template <class NodeAt>
QM_HD double cell_perimeter(int n, const NodeAt& node_at) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += plan_distance(node_at(i), node_at(i + 1 < n ? i + 1 : 0));
  return sum;
}

/// Characteristic length of a cell, m.
QM_HD inline double characteristic_length(double area, double perimeter) {
  return 2.0 * area / perimeter;
}

/// Twice the area (m2) of a triangle; negative where its corners run clockwise.
QM_HD inline double twice_signed_area(PlanPoint a, PlanPoint b, PlanPoint c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Twice the area (m2) of a cell of n nodes; negative where they run clockwise.
template <class NodeAt>
QM_HD double twice_signed_cell_area(int n, const NodeAt& node_at) {
  double sum = 0.0;
  for (int i = 1; i + 1 < n; ++i) {
    sum += twice_signed_area(node_at(0), node_at(i), node_at(i + 1));
  }
  return sum;
}

/// Area (m2) of a triangle, whichever way its corners run.
QM_HD inline double triangle_area(PlanPoint a, PlanPoint b, PlanPoint c) {
  const double twice_area = a.x * b.y + b.x * c.y + c.x * a.y - b.x * a.y - a.x * c.y - c.x * b.y;
  return std::fabs(twice_area) / 2.0;
}

/// Area (m2) of the fan of triangles between the centre of a cell and its n sides. Products of
/// coordinates lose digits where these are large beside the cell: at 1e6 m a triangle with sides of
/// 1 m keeps three.
template <class NodeAt>
QM_HD double cell_area(int n, PlanPoint center, const NodeAt& node_at) {
  // Intended: absolute values make the area independent of the orientation of the vertices; a
  // signed sum would not be.
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    sum += triangle_area(center, node_at(i), node_at(i + 1 < n ? i + 1 : 0));
  }
  return sum;
}

/// The same area from differences to the first node, which lose no digits.
template <class NodeAt>
QM_HD double cell_area_of_differences(int n, const NodeAt& node_at) {
  const PlanPoint origin = node_at(0);
  const auto difference_at = [&](int i) {
    const PlanPoint node = node_at(i);
    return PlanPoint{node.x - origin.x, node.y - origin.y};
  };
  PlanPoint sum{0.0, 0.0};
  for (int i = 0; i < n; ++i) {
    const PlanPoint difference = difference_at(i);
    sum = {sum.x + difference.x, sum.y + difference.y};
  }
  return cell_area(n, {sum.x / n, sum.y / n}, difference_at);
}

/// Whether a point lies in the triangle (c, a, b). Strict comparisons: a triangle that runs
/// counter-clockwise accepts its inside only, one that runs clockwise its sides too.
QM_HD inline bool triangle_contains(PlanPoint c, PlanPoint a, PlanPoint b, PlanPoint point) {
  c = {c.x - point.x, c.y - point.y};
  a = {a.x - point.x, a.y - point.y};
  b = {b.x - point.x, b.y - point.y};
  const int count = (a.x * b.y > b.x * a.y) + (c.x * a.y > a.x * c.y) + (b.x * c.y > c.x * b.y);
  return count == 0 || count == 3;
}

/// Whether one of the triangles (centre, node, next node) of a cell contains a point.
template <class NodeAt>
QM_HD bool cell_contains(int n, PlanPoint center, const NodeAt& node_at, PlanPoint point) {
  for (int i = 0; i < n; ++i) {
    if (triangle_contains(center, node_at(i), node_at(i + 1 < n ? i + 1 : 0), point)) return true;
  }
  return false;
}

/// Share of its area that a cell loses (or gains) by rounding.
QM_HD inline double area_loss(double area, double accurate_area) {
  return area == accurate_area ? 0.0 : std::fabs(area - accurate_area) / accurate_area;
}

}  // namespace physics
