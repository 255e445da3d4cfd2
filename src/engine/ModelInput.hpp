// A model as the engine receives it: columns in the order of the objects.
#pragma once

#include <cstddef>
#include <vector>

#include "engine/aligned_vector.hpp"
#include "kernels/boundary.hpp"
#include "physics/bed_load_mpm.hpp"
#include "physics/infiltration.hpp"
#include "physics/rain.hpp"

namespace engine {

using Column = AlignedVector<double>;

/// The columns of the cells. Those that a run does not need are empty.
struct CellTable {
  Column h, qx, qy;             ///< state: m, m2/s
  Column eta;                   ///< free-surface level, m
  Column max_h;                 ///< largest depth so far, m
  Column bed;                   ///< level of the bed under the water, m
  Column max_node;              ///< highest vertex, m
  Column area, char_length;     ///< m2, m
  Column manning;               ///< s/m^(1/3)
  Column infiltrated;           ///< m
  Column hs, qsx, qsy, dqs_dh;  ///< sediment: m, m2/s, m/s
  Column rock;                  ///< level of the bed under the sediment, m
  AlignedVector<int> rain;      ///< number of the cell's hyetogram, 0: none
  AlignedVector<int> soil;      ///< number of the cell's soil, -1: none
  AlignedVector<int> slots[3];  ///< 2 edge + (0 left, 1 right); -1: none
};

/// So many edges have sides that an int numbers, as 2 edge + side.
inline constexpr std::size_t most_edges = (std::size_t{1} << 30) - 1;

/// The columns of the edges.
struct EdgeTable {
  std::vector<int> left, right;  ///< right: -1 on a boundary
  std::vector<double> nx, ny, length;
};

/// What an edge imposes on the cell at its left.
struct BoundaryInput {
  int edge;
  kernels::BoundaryKind kind;
  double imposed;      ///< unit discharge (m2/s) or depth (m)
  double imposed_bed;  ///< bed load along the outward normal (m2/s)
};

/// The cells of a hyetogram rain alike: they share its clock.
struct RainInput {
  physics::Hyetogram hyetogram;  ///< points to data that outlives the engine
  physics::RainClock clock;
};

struct Soil {
  bool is_green_ampt;
  physics::GreenAmptSoil green_ampt;
  physics::HortonSoil horton;
};

struct ModelInput {
  std::vector<double> x, y;  ///< centres of the cells, m
  CellTable cells;
  EdgeTable edges;
  std::vector<BoundaryInput> boundaries;
  std::vector<RainInput> rain;  ///< number n of a cell is entry n - 1
  std::vector<Soil> soils;
  bool has_bed = false;  ///< the model with sediments
  double zero_depth = 0.0;
  double char_length_min = 0.0;
  double h0 = 0.0;
  double porosity = 0.0;
  physics::Grains grains{};
  int cells_per_patch = 0;  ///< 0: what suits the mesh
};

}  // namespace engine
