// The tables of a model: columns in an order of their own, cut into patches.
#pragma once

#include <cstddef>
#include <vector>

#include "engine/ModelInput.hpp"
#include "engine/Patches.hpp"
#include "kernels/boundary.hpp"

namespace engine {

/// Flux slots; `bed` is empty without sediments.
struct Slots {
  Column mass, momentum_x, momentum_y, bed;

  void assign(std::size_t count, bool has_bed);
  kernels::SlotColumns columns();
};

struct Tables {
  bool has_bed = false;          ///< the model with sediments
  double zero_depth = 0.0;       ///< m
  double dry_step = 0.0;         ///< what a dry cell contributes to the stable step, s
  double char_length_min = 0.0;  ///< m
  double porosity = 0.0;         ///< of the bed
  physics::Grains grains{};      ///< of the bed

  CellTable cells;
  Column reciprocal_area;        ///< 1/m2
  Column reciprocal, celerity;   ///< terms of the depth: 1/m, m/s
  Column shortest;               ///< of every run of cells_of_shortest cells, m
  std::vector<int> cell_number;  ///< place of a cell of the model in the tables
  Patches patches;
  std::vector<kernels::BoundaryEdge> boundaries;
  std::vector<int> boundary_number;  ///< place of a boundary of the input
  /// What passes the edges around patches: left sides of the cut edges, their right sides,
  /// boundaries.
  Slots outer;
  std::vector<Soil> soils;
  std::vector<std::vector<int>> soils_of_patch;  ///< empty without soils

  int cut_edges() const { return static_cast<int>(patches.cut_edges.left.size()); }
  int first_boundary_slot() const { return 2 * cut_edges(); }
  kernels::CellColumns columns();
  kernels::EdgeColumns<kernels::Local> patch_edges() const;
  kernels::EdgeColumns<int> cut_edge_columns() const;
  /// From now on the free surface is bed and depth.
  void drop_given_surface() { cells.eta = {}; }
  /// Memory, bytes.
  std::size_t bytes() const;
};

/// Takes the columns of a model over and puts them in the order of the tables, in patches that suit
/// a number of threads. Throws std::length_error as make_patches does.
Tables make_tables(ModelInput&& input, int threads);

}  // namespace engine
