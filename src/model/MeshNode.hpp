// A vertex of the mesh, also used as a point or vector: x, y and elevation z, in m.
#pragma once

#include <vector>

#include "physics/cell_geometry.hpp"

struct MeshNode {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  MeshNode() = default;
  MeshNode(double px, double py, double pz) : x(px), y(py), z(pz) {}
  /// From at least three values.
  explicit MeshNode(const std::vector<double>& values) : x(values[0]), y(values[1]), z(values[2]) {}

  MeshNode& operator+=(const MeshNode& other) {
    x += other.x;
    y += other.y;
    z += other.z;
    return *this;
  }
  MeshNode& operator/=(double divisor) {
    x /= divisor;
    y /= divisor;
    z /= divisor;
    return *this;
  }

  /// Distance in plan, m.
  double horizontal_distance(const MeshNode& other) const {
    return physics::plan_distance({x, y}, {other.x, other.y});
  }
};

inline MeshNode operator+(MeshNode left, const MeshNode& right) { return left += right; }
inline MeshNode operator/(MeshNode node, double divisor) { return node /= divisor; }

/// Writes x, y, z, each followed by a tab.
template <class Stream>
Stream& operator<<(Stream& out, const MeshNode& node) {
  out << node.x << '\t' << node.y << '\t' << node.z << '\t';
  return out;
}
