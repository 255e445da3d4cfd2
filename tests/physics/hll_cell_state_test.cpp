#include "physics/hll_cell_state.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/hll_random.hpp"

namespace hll_cell_state_test {

constexpr int trials = 2000;

/// The edges of a cell, each leading out of it.
std::vector<physics::Edge> edges_of(const physics::HllCell& cell) {
  const physics::OutwardNormals n = physics::outward_normals(cell.shape);
  std::vector<physics::Edge> edges;
  for (const physics::PlanVector& k : {n.k0, n.k1, n.k2}) {
    const double length = std::hypot(k.x, k.y);
    edges.push_back({k.x / length, k.y / length, length});
  }
  return edges;
}

TEST(HllCellState, IsTheWaterOfTheCellAtEveryEdge) {
  hll_random::Source random;
  for (int i = 0; i < trials; ++i) {
    const physics::HllNeighbour own = random.neighbour();
    const physics::HllCell cell = random.cell();
    const physics::HllCellState state = physics::hll_cell_state(own, cell, 0.1);
    for (const physics::Edge& edge : edges_of(cell)) {
      const physics::HllEdgeState at_edge = physics::hll_edge_state(state, edge);
      EXPECT_EQ(at_edge.h, own.water.h);
      EXPECT_EQ(at_edge.e, own.bed + own.water.h);
      EXPECT_EQ(at_edge.u, own.water.u);
      EXPECT_EQ(at_edge.v, own.water.v);
    }
  }
}

TEST(HllCellState, GivesAllEdgesTogetherWhatTheCellHolds) {
  hll_random::Source random;
  int wet = 0;
  for (int i = 0; i < trials; ++i) {
    const physics::HllNeighbour own = random.neighbour();
    const physics::HllCell cell = random.cell();
    const double dt = random.between(0.01, 1.0);
    const physics::HllCellState state = physics::hll_cell_state(own, cell, dt);
    double shared = 0.0;
    for (const physics::Edge& edge : edges_of(cell)) {
      shared += dt * physics::hll_edge_state(state, edge).cap;
    }
    const double held = own.water.h / cell.reciprocal_area;
    EXPECT_LE(shared, held * (1.0 - 0.9e-12));
    EXPECT_GE(shared, held * (1.0 - 1.1e-12));
    wet += held > 0.0;
  }
  EXPECT_GT(wet, trials / 2);
}

TEST(HllCellState, GivesMoreWhereTheWaterRuns) {
  const physics::HllCell cell = {
      physics::hll_triangle({0.0, 0.0}, {2.0, 0.0}, {1.0, 2.0}), {0.0, 0.0}, 0.5, 2.0};
  const physics::HllNeighbour own = {{1.0, 0.0, -9.0, 0.0}, 0.0};
  const physics::HllCellState state = physics::hll_cell_state(own, cell, 1.0);
  const std::vector<physics::Edge> edges = edges_of(cell);
  const double below = physics::hll_edge_state(state, edges[0]).cap;
  EXPECT_GT(below, 5.0 * physics::hll_edge_state(state, edges[1]).cap);
  EXPECT_GT(below, 5.0 * physics::hll_edge_state(state, edges[2]).cap);
}

}  // namespace hll_cell_state_test
