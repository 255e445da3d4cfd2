// Sections through which discharges are recorded, from named lines.
#pragma once

#include <string>
#include <vector>

#include "mesh/boundaries.hpp"
#include "mesh/edges.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

struct Section {
  std::string name;
  std::vector<int> edges;     // from one end of the line to the other
  double length = 0.0;        // m
  double nx = 0.0, ny = 0.0;  // unit vector of the positive discharge, on the mean
};

/// The section along an inner line; "NAME=reversed" takes it the other way. Its edges are turned so
/// that all normals point to the right of the line's direction. Throws tools::Error where the line
/// is unknown, branches, has gaps, or touches the boundary.
Section make_section(const Mesh& mesh, std::vector<Edge>& edges, const EdgeIndex& index,
                     const std::string& request);

/// The sections along the boundaries that water passes, which have a name and are no walls; their
/// discharge is positive where it leaves.
std::vector<Section> boundary_sections(const Mesh& mesh, const std::vector<Edge>& edges,
                                       const Boundaries& boundaries);

}  // namespace mesh_import
