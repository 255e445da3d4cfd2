#include "mesh/run_options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "mesh/numbers.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

/// The numbers between commas; none if one of them is no number.
std::optional<std::vector<double>> parse_list(const std::string& text) {
  std::vector<double> values;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    const auto value =
        utils::parse_finite_number(std::string_view(text).substr(begin, end - begin));
    if (!value) return std::nullopt;
    values.push_back(*value);
    begin = end + 1;
  }
  return values;
}

/// A third of a cell, in which the simulator looks for points.
struct Sector {
  Node center, a, b;

  Node middle() const { return {(center.x + a.x + b.x) / 3.0, (center.y + a.y + b.y) / 3.0, 0.0}; }
  /// The least of the point's barycentric coordinates: positive inside, 0 on a side.
  double depth_of(const Node& point) const {
    const auto area = [](const Node& p, const Node& q, const Node& r) {
      return (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
    };
    const double whole = area(center, a, b);
    return std::min({area(point, a, b), area(center, point, b), area(center, a, point)}) / whole;
  }
};

Sector sector_of(const Mesh& mesh, const Cell& cell, int k) {
  return {mesh.center(cell), mesh.nodes[static_cast<std::size_t>(cell.node(k))],
          mesh.nodes[static_cast<std::size_t>(cell.node(k + 1))]};
}

}  // namespace

Node parse_point(const std::string& option, const std::string& text) {
  const auto values = parse_list(text);
  if (!values || values->size() != 2) {
    throw CLI::ValidationError(option, "found \"" + text + "\", expected X,Y, as in 12.5,40");
  }
  return {values->at(0), values->at(1), 0.0};
}

Gauge parse_gauge(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  if (equals == std::string::npos) return {parse_point("--gauge", text), ""};
  return {parse_point("--gauge", text.substr(equals + 1)), text.substr(0, equals)};
}

std::vector<double> parse_snapshots(const std::string& text) {
  const auto times = parse_list(text);
  if (!times) {
    throw CLI::ValidationError("--snapshots",
                               "found \"" + text + "\", expected T1,T2,..., as in 0,60,300");
  }
  constexpr double apart = 0.01, rounding = 1e-9;
  for (std::size_t i = 0; i < times->size(); ++i) {
    const double time = times->at(i);
    if (time < 0.0 || (i > 0 && time < times->at(i - 1) + apart - rounding)) {
      throw CLI::ValidationError("--snapshots", "found " + shown(time) +
                                                    ", expected times from 0 on that increase by "
                                                    "0.01 s or more");
    }
  }
  return *times;
}

Node point_inside(const Mesh& mesh, const Cell& cell) { return sector_of(mesh, cell, 0).middle(); }

std::optional<Node> place_gauge(const Mesh& mesh, const Node& point) {
  constexpr double margin = 1e-6, rounding = 1e-9;
  std::optional<Sector> touched;
  for (const Cell& cell : mesh.cells) {
    for (int k = 0; k < cell.size(); ++k) {
      const Sector sector = sector_of(mesh, cell, k);
      const double depth = sector.depth_of(point);
      if (depth > margin) return point;
      if (!touched && depth > -rounding) touched = sector;
    }
  }
  if (!touched) return std::nullopt;
  return touched->middle();
}

}  // namespace mesh_import
