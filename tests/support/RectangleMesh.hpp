// A rectangle of squares, each cut into two triangles, built into a model.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "globals/Globals.hpp"
#include "model/SWE.hpp"

namespace support {

struct Side {
  int code = edge_code::wall;
  double value = 0.0;
  std::string file = {};
};

struct Rectangle {
  int nx, ny;            ///< squares along x and y
  double width, height;  ///< m
  Side west = {}, east = {}, south = {}, north = {};
};

/// A function of the place: bed or level, in m.
using Field = std::function<double(double, double)>;

/// Elevation 0 everywhere.
inline double flat(double, double) { return 0.0; }

/// Builds nodes, cells and interfaces, and orders the interfaces of the cells.
template <class Model>
class RectangleBuilder {
 public:
  RectangleBuilder(const Rectangle& rectangle, const Field& bed)
      : rectangle_(rectangle), model_(std::make_unique<Model>()) {
    add_nodes(bed);
    add_cells();
    add_interfaces();
    for (const auto& cell : model_->cells) {
      cell->sort_interfaces_by_tag();
      cell->set_local_index_to_edges();
    }
  }
  std::unique_ptr<Model> take() { return std::move(model_); }

 private:
  struct EdgeOfTwo {
    int node1, node2, left, right;
  };

  int node(int i, int j) const { return j * (rectangle_.nx + 1) + i; }
  const MeshNode& at(int i) const { return model_->mesh_nodes[static_cast<std::size_t>(i)]; }

  void add_nodes(const Field& bed) {
    for (int j = 0; j <= rectangle_.ny; ++j) {
      for (int i = 0; i <= rectangle_.nx; ++i) {
        const double x = rectangle_.width * i / rectangle_.nx;
        const double y = rectangle_.height * j / rectangle_.ny;
        model_->mesh_nodes.emplace_back(x, y, bed(x, y));
      }
    }
    model_->n_nodes = static_cast<int>(model_->mesh_nodes.size());
  }

  void add_cells() {
    for (int j = 0; j < rectangle_.ny; ++j) {
      for (int i = 0; i < rectangle_.nx; ++i) {
        const int sw = node(i, j), se = node(i + 1, j), nw = node(i, j + 1),
                  ne = node(i + 1, j + 1);
        if ((i + j) % 2 == 0) {
          add_cell({sw, se, ne});
          add_cell({sw, ne, nw});
        } else {
          add_cell({sw, se, nw});
          add_cell({se, ne, nw});
        }
      }
    }
    model_->n_cells = static_cast<int>(model_->cells.size());
  }

  /// A triangle, counter-clockwise: the normal of an edge in that direction points out of it.
  void add_cell(const std::vector<int>& corners) {
    const int id = static_cast<int>(model_->cells.size());
    std::vector<const MeshNode*> nodes;
    for (const int corner : corners) nodes.push_back(&at(corner));
    model_->build_cell(id, nodes);
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = corners[k], b = corners[(k + 1) % 3];
      const auto key = std::minmax(a, b);
      const auto known = edge_of_.find(key);
      if (known == edge_of_.end()) {
        edge_of_[key] = edges_.size();
        edges_.push_back({a, b, id, -1});
      } else {
        edges_[known->second].right = id;
      }
    }
  }

  void add_interfaces() {
    for (std::size_t i = 0; i < edges_.size(); ++i) {
      const EdgeOfTwo& e = edges_[i];
      const Side side = e.right >= 0 ? Side{edge_code::interior} : side_of(e);
      model_->build_interface(edge_code::scheme_lhllc, static_cast<int>(i), e.left, e.right,
                              at(e.node1), at(e.node2), side.code, side.value, side.file);
    }
    model_->n_interfaces = static_cast<int>(model_->interfaces.size());
  }

  const Side& side_of(const EdgeOfTwo& e) const {
    const MeshNode middle = (at(e.node1) + at(e.node2)) / 2.0;
    if (middle.x == 0.0) return rectangle_.west;
    if (middle.x == rectangle_.width) return rectangle_.east;
    return middle.y == 0.0 ? rectangle_.south : rectangle_.north;
  }

  Rectangle rectangle_;
  std::unique_ptr<Model> model_;
  std::vector<EdgeOfTwo> edges_;
  std::map<std::pair<int, int>, std::size_t> edge_of_;
};

template <class Model = SWE>
std::unique_ptr<Model> build_rectangle(const Rectangle& rectangle, const Field& bed = flat) {
  return RectangleBuilder<Model>(rectangle, bed).take();
}

/// Gives every cell the free-surface level at its centre (m) and unit discharges (m2/s), and
/// prepares the rule of the time step.
inline void fill(PhysicalModel& model, const Field& level, double qx = 0.0, double qy = 0.0) {
  for (const auto& cell : model.cells) {
    cell->set_hydrodynamic_values(level(cell->center.x, cell->center.y), qx, qy);
  }
  model.findH0();
  model.calculateCharLengthMin();
}

/// Volume of the water, m3.
inline double volume_of(const PhysicalModel& model) {
  double sum = 0.0;
  for (const auto& cell : model.cells) sum += cell->U.h * cell->area;
  return sum;
}

/// Largest absolute unit discharge along x or y, m2/s.
inline double largest_discharge(const PhysicalModel& model) {
  double q = 0.0;
  for (const auto& cell : model.cells) {
    q = std::max({q, std::abs(cell->U.qx), std::abs(cell->U.qy)});
  }
  return q;
}

/// Applies steps at a Courant number; the clock stands at the start of each step while it is
/// applied.
inline void advance(PhysicalModel& model, int steps, double courant) {
  double next = courant * model.dtMin();
  for (int i = 0; i < steps; ++i) {
    Globals::dt = next;
    next = courant * model.computeFlowStep();
    Globals::t += Globals::dt;
  }
}

}  // namespace support
