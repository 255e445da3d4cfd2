// What the command line says about outputs: where gauges stand, and when snapshots are taken.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mesh/case_writer.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// A point that an option gives as X,Y, in m; throws CLI::ValidationError (wrong usage).
Node parse_point(const std::string& option, const std::string& text);

/// A gauge given as X,Y or NAME=X,Y; throws CLI::ValidationError (wrong usage).
Gauge parse_gauge(const std::string& text);

/// Times given as T1,T2,..., in s, at least 0.01 s apart, as the names of snapshots are; throws
/// CLI::ValidationError (wrong usage).
std::vector<double> parse_snapshots(const std::string& text);

/// A point of a cell that the simulator finds in that cell.
Node point_inside(const Mesh& mesh, const Cell& cell);

/// The point itself, or, where it lies on a line on which the simulator finds no cell (an edge, or
/// from the centre of a cell to a corner), one beside it in a cell that it touches; none for a
/// point in no cell.
std::optional<Node> place_gauge(const Mesh& mesh, const Node& point);

}  // namespace mesh_import
