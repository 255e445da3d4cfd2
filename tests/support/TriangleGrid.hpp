// Cases over triangles, straight in arrays: squares cut in two, regular or shaken at random, with
// any side of an edge named first.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"

namespace support {

struct GridSide {
  int code = edge_code::wall;
  double value = 0.0;
  int series = -1;
};

struct TriangleGrid {
  using Field = std::function<double(double, double)>;

  int nx = 8, ny = 8;
  double size = 1.0;  ///< side of a square, m
  unsigned seed = 0;  ///< not 0: nodes moved, diagonals, sides and order of the edges at random
  Field bed = [](double, double) { return 0.0; };
  Field level = [](double, double) { return 1.0; };  ///< at the centres of the cells
  Field qx = [](double, double) { return 0.0; };
  bool bed_by_file = false;  ///< the bed of the cells, over level nodes
  GridSide west = {}, east = {}, south = {}, north = {};
  double zero_depth = 1e-6;

  cases::Case make() const;
};

namespace triangle_grid {

using cases::at;
using cases::Number;

class Builder {
 public:
  explicit Builder(const TriangleGrid& grid) : grid_(grid), generator_(grid.seed) {}

  cases::Case build() {
    case_.zero_depth = grid_.zero_depth;
    case_.cfl = 0.9;
    case_.t_end = 1e9;
    case_.scheme = cases::Scheme::hll2;
    add_nodes();
    add_cells();
    add_edges();
    add_fields();
    return std::move(case_);
  }

 private:
  bool is_random() const { return grid_.seed != 0; }
  double shift() { return std::uniform_real_distribution<double>(-0.25, 0.25)(generator_); }
  Number node(int i, int j) const { return j * (grid_.nx + 1) + i; }

  void add_nodes() {
    for (int j = 0; j <= grid_.ny; ++j) {
      for (int i = 0; i <= grid_.nx; ++i) {
        const bool moves = is_random() && i > 0 && i < grid_.nx && j > 0 && j < grid_.ny;
        const double x = grid_.size * (i + (moves ? shift() : 0.0));
        const double y = grid_.size * (j + (moves ? shift() : 0.0));
        case_.mesh.x.push_back(x);
        case_.mesh.y.push_back(y);
        case_.mesh.z.push_back(grid_.bed_by_file ? 0.0 : grid_.bed(x, y));
      }
    }
  }

  void add_cells() {
    for (int j = 0; j < grid_.ny; ++j) {
      for (int i = 0; i < grid_.nx; ++i) {
        const Number sw = node(i, j), se = node(i + 1, j), nw = node(i, j + 1),
                     ne = node(i + 1, j + 1);
        const bool rising = is_random() ? generator_() % 2 == 0 : (i + j) % 2 == 0;
        if (rising) {
          add_cell({sw, se, ne});
          add_cell({sw, ne, nw});
        } else {
          add_cell({sw, se, nw});
          add_cell({se, ne, nw});
        }
      }
    }
  }

  void add_cell(std::array<Number, 3> nodes) {
    const Number cell = case_.mesh.n_cells();
    for (std::size_t k = 0; k < 3; ++k) {
      const Number a = nodes[k], b = nodes[(k + 1) % 3];
      const auto [known, is_new] = edge_of_.try_emplace(std::minmax(a, b), edges_.size());
      if (is_new) {
        edges_.push_back({cell, -1, a, b});
      } else {
        edges_[known->second].right = cell;
      }
    }
    if (is_random()) std::rotate(nodes.begin(), nodes.begin() + generator_() % 3, nodes.end());
    if (is_random() && generator_() % 2 == 0) std::swap(nodes[1], nodes[2]);
    case_.mesh.add_cell(nodes);
  }

  void add_edges() {
    if (is_random()) std::shuffle(edges_.begin(), edges_.end(), generator_);
    for (EdgeOfTwo& e : edges_) {
      if (e.right >= 0 && is_random() && generator_() % 2 == 0) {
        std::swap(e.left, e.right);
        std::swap(e.node1, e.node2);
      }
      if (e.right < 0) {
        const GridSide& side = side_of(e);
        case_.mesh.boundaries.push_back({case_.mesh.n_edges(), side.code, side.value, side.series});
      }
      case_.mesh.left.push_back(e.left);
      case_.mesh.right.push_back(e.right);
      case_.mesh.node1.push_back(e.node1);
      case_.mesh.node2.push_back(e.node2);
    }
  }

  struct EdgeOfTwo {
    Number left, right, node1, node2;
  };

  const GridSide& side_of(const EdgeOfTwo& e) const {
    const auto both = [&](const std::vector<double>& x, double value) {
      return x[at(e.node1)] == value && x[at(e.node2)] == value;
    };
    if (both(case_.mesh.x, 0.0)) return grid_.west;
    if (both(case_.mesh.x, grid_.size * grid_.nx)) return grid_.east;
    return both(case_.mesh.y, 0.0) ? grid_.south : grid_.north;
  }

  void add_fields() {
    for (Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
      const physics::SpacePoint center = case_.mesh.center_of(cell);
      if (grid_.bed_by_file) case_.fields.bed.push_back(grid_.bed(center.x, center.y));
      case_.fields.level.push_back(grid_.level(center.x, center.y));
      case_.fields.qx.push_back(grid_.qx(center.x, center.y));
      case_.fields.qy.push_back(0.0);
    }
  }

  const TriangleGrid& grid_;
  std::mt19937 generator_;
  cases::Case case_;
  std::vector<EdgeOfTwo> edges_;
  std::map<std::pair<Number, Number>, std::size_t> edge_of_;
};

}  // namespace triangle_grid

inline cases::Case TriangleGrid::make() const { return triangle_grid::Builder(*this).build(); }

}  // namespace support
