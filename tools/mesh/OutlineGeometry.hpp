// An outline as a geometry of Gmsh. Part of the module of Gmsh alone.
#pragma once

#include <functional>
#include <map>

#include "mesh/outline.hpp"

namespace mesh_import {

/// Its points count from an origin: Gmsh rounds as if all of them were near.
class OutlineGeometry {
 public:
  using SizeAt = std::function<double(double x, double y)>;  // of edges, m

  OutlineGeometry(const Outline& outline, const SizeAt& size_at, const Node& origin)
      : outline_(outline), size_at_(size_at), origin_(origin) {}

  /// What a function that is asked for lengths refers to must outlive the mesh that is made.
  void build();

 private:
  int point(int index);
  int line(int from, int to);

  const Outline& outline_;
  const SizeAt& size_at_;
  Node origin_;
  std::map<int, int> points_;  // of the outline -> of Gmsh
};

}  // namespace mesh_import
