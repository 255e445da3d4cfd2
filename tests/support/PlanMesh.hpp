// A mesh with its states as plain data, which can be renumbered and rotated before it is built into
// a model; random ones for property tests.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "model/SWE.hpp"

namespace support {

struct PlanPoint {
  double x, y, z;  ///< m
};

struct PlanCell {
  std::array<int, 3> nodes;  ///< counter-clockwise
  double depth, qx, qy;      ///< m, m2/s
};

struct PlanEdge {
  int left, right;  ///< right is -1 on the border, which is a wall
  int node1, node2;
};

struct Plan {
  std::vector<PlanPoint> points;
  std::vector<PlanCell> cells;
  std::vector<PlanEdge> edges;
  double manning = 0.0;  ///< of every cell; none when 0
};

using Permutation = std::vector<int>;  ///< new number of each old one

inline Permutation random_permutation(std::size_t n, std::mt19937& generator) {
  Permutation permutation(n);
  std::iota(permutation.begin(), permutation.end(), 0);
  std::shuffle(permutation.begin(), permutation.end(), generator);
  return permutation;
}

inline int renumbered(const Permutation& permutation, int i) {
  return i < 0 ? i : permutation[static_cast<std::size_t>(i)];
}

/// The same mesh under other numbers.
inline Plan renumber(const Plan& plan, const Permutation& points, const Permutation& cells,
                     const Permutation& edges) {
  Plan result = plan;
  const auto at = [](auto& list, const Permutation& permutation, std::size_t i) -> auto& {
    return list[static_cast<std::size_t>(permutation[i])];
  };
  for (std::size_t i = 0; i < points.size(); ++i) at(result.points, points, i) = plan.points[i];
  for (std::size_t i = 0; i < cells.size(); ++i) {
    PlanCell cell = plan.cells[i];
    for (int& node : cell.nodes) node = renumbered(points, node);
    at(result.cells, cells, i) = cell;
  }
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const PlanEdge& edge = plan.edges[i];
    at(result.edges, edges, i) = {renumbered(cells, edge.left), renumbered(cells, edge.right),
                                  renumbered(points, edge.node1), renumbered(points, edge.node2)};
  }
  return result;
}

/// A random order of the edges in which the edges of every cell keep theirs: at each turn, one of
/// the edges that come first among those left in all of their cells.
inline Permutation random_permutation_within_cells(const Plan& plan, std::mt19937& generator) {
  std::vector<std::vector<int>> of_cell(plan.cells.size());
  const auto edges_of = [&](int cell) -> auto& { return of_cell[static_cast<std::size_t>(cell)]; };
  for (std::size_t e = 0; e < plan.edges.size(); ++e) {
    edges_of(plan.edges[e].left).push_back(static_cast<int>(e));
    if (plan.edges[e].right >= 0) edges_of(plan.edges[e].right).push_back(static_cast<int>(e));
  }
  const auto is_first = [&](int e) {
    const PlanEdge& edge = plan.edges[static_cast<std::size_t>(e)];
    return edges_of(edge.left).front() == e &&
           (edge.right < 0 || edges_of(edge.right).front() == e);
  };
  std::vector<int> left(plan.edges.size());
  std::iota(left.begin(), left.end(), 0);
  Permutation permutation(plan.edges.size());
  for (int number = 0; !left.empty(); ++number) {
    std::vector<int> ready;
    std::copy_if(left.begin(), left.end(), std::back_inserter(ready), is_first);
    const int e = ready[generator() % ready.size()];
    const PlanEdge& edge = plan.edges[static_cast<std::size_t>(e)];
    permutation[static_cast<std::size_t>(e)] = number;
    edges_of(edge.left).erase(edges_of(edge.left).begin());
    if (edge.right >= 0) edges_of(edge.right).erase(edges_of(edge.right).begin());
    left.erase(std::find(left.begin(), left.end(), e));
  }
  return permutation;
}

/// The mesh and its discharges turned counter-clockwise about the origin.
inline Plan rotate(Plan plan, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  for (PlanPoint& p : plan.points) p = {c * p.x - s * p.y, s * p.x + c * p.y, p.z};
  for (PlanCell& cell : plan.cells) {
    cell = {cell.nodes, cell.depth, c * cell.qx - s * cell.qy, s * cell.qx + c * cell.qy};
  }
  return plan;
}

/// What a random plan looks like.
struct Weather {
  double relief;       ///< bed levels are random between 0 and this, m
  double level;        ///< mean free surface, m; cells whose bed lies higher are dry
  double waves;        ///< the surface is random within this of its mean, m
  double speed;        ///< velocities are random within this, m/s
  double manning = 0;  ///< s/m^(1/3)
};

/// nx by ny unit squares with moved nodes, cut at random, with random beds and states.
inline Plan random_plan(int nx, int ny, const Weather& weather, std::mt19937& generator) {
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  Plan plan;
  plan.manning = weather.manning;
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      const bool moves = i > 0 && i < nx && j > 0 && j < ny;
      const double dx = moves ? 0.3 * unit(generator) : 0.0;
      const double dy = moves ? 0.3 * unit(generator) : 0.0;
      plan.points.push_back({i + dx, j + dy, weather.relief * (0.5 + 0.5 * unit(generator))});
    }
  }
  std::map<std::pair<int, int>, std::size_t> edge_of;
  const auto add_cell = [&](const std::array<int, 3>& nodes) {
    const int id = static_cast<int>(plan.cells.size());
    double bed = 0.0;
    for (const int node : nodes) bed += plan.points[static_cast<std::size_t>(node)].z / 3.0;
    const double depth = std::max(0.0, weather.level + weather.waves * unit(generator) - bed);
    const double qx = depth * weather.speed * unit(generator);
    plan.cells.push_back({nodes, depth, qx, depth * weather.speed * unit(generator)});
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = nodes[k], b = nodes[(k + 1) % 3];
      const auto [known, is_new] = edge_of.try_emplace(std::minmax(a, b), plan.edges.size());
      if (is_new) {
        plan.edges.push_back({id, -1, a, b});
      } else {
        plan.edges[known->second].right = id;
      }
    }
  };
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      const int sw = j * (nx + 1) + i, se = sw + 1, nw = sw + nx + 1, ne = nw + 1;
      const bool rising = unit(generator) > 0.0;
      add_cell(rising ? std::array{sw, se, ne} : std::array{sw, se, nw});
      add_cell(rising ? std::array{sw, ne, nw} : std::array{se, ne, nw});
    }
  }
  return plan;
}

/// The plan as a model, ready to step.
inline std::unique_ptr<SWE> build(const Plan& plan) {
  auto model = std::make_unique<SWE>();
  for (const PlanPoint& p : plan.points) model->mesh_nodes.emplace_back(p.x, p.y, p.z);
  model->n_nodes = static_cast<int>(plan.points.size());
  const auto node = [&](int i) -> const MeshNode& {
    return model->mesh_nodes[static_cast<std::size_t>(i)];
  };
  for (std::size_t i = 0; i < plan.cells.size(); ++i) {
    const auto& [a, b, c] = plan.cells[i].nodes;
    model->build_cell(static_cast<int>(i), {&node(a), &node(b), &node(c)});
  }
  model->n_cells = static_cast<int>(plan.cells.size());
  for (std::size_t i = 0; i < plan.edges.size(); ++i) {
    const PlanEdge& edge = plan.edges[i];
    const int code = edge.right < 0 ? edge_code::wall : edge_code::interior;
    model->build_interface(edge_code::scheme_lhllc, static_cast<int>(i), edge.left, edge.right,
                           node(edge.node1), node(edge.node2), code, 0.0, {});
  }
  model->n_interfaces = static_cast<int>(plan.edges.size());
  for (std::size_t i = 0; i < plan.cells.size(); ++i) {
    const PlanCell& state = plan.cells[i];
    ComputationalCell& cell = *model->cells[i];
    cell.sort_interfaces_by_tag();
    cell.set_local_index_to_edges();
    cell.set_hydrodynamic_values(cell.bed_rock_level + state.depth, state.qx, state.qy);
    if (plan.manning > 0.0) {
      cell.set_friction(plan.manning);
      cell.add_source_term(&model->friction_terms.emplace_back(plan.manning));
    }
  }
  model->findH0();
  model->calculateCharLengthMin();
  return model;
}

}  // namespace support
