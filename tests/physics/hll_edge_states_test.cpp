#include "physics/hll_edge_states.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "support/hll_random.hpp"

namespace hll_edge_states_test {

using hll_random::Source;
using hll_random::zero_depth;
using physics::HllCellEdges;
using physics::HllEdgeState;
using physics::HllNeighbour;

constexpr int trials = 2000;
constexpr double dt = 0.05;  // s

/// A cell among three like it over a plane bed, on a field that is linear in space.
struct Patch {
  physics::HllCell cell;
  physics::SlopeWeights weights;
  HllNeighbour own, n0, n1, n2;
};

const physics::PlanVector bed_slope{0.2, -0.1}, level_slope{-0.05, 0.1}, u_slope{0.3, 0.2},
    v_slope{-0.1, 0.4};

HllNeighbour linear_water(double x, double y, double drag = 0.0) {
  const auto value = [&](double at_center, const physics::PlanVector& s) {
    return at_center + s.x * x + s.y * y;
  };
  const double bed = value(1.0, bed_slope);
  return {{value(3.0, level_slope) - bed, value(2.0, u_slope), value(-1.0, v_slope), drag}, bed};
}

Patch linear_patch(double drag = 0.0) {
  const physics::HllTriangle shape =
      physics::hll_triangle({0.0, 0.0}, {2.0, 0.0}, {1.0, std::sqrt(3.0)});
  const physics::PlanVector d0{2 * shape.r0.x, 2 * shape.r0.y}, d1{2 * shape.r1.x, 2 * shape.r1.y},
      d2{-d0.x - d1.x, -d0.y - d1.y};
  return {{shape, bed_slope, 1.0 / std::sqrt(3.0), 2.0},
          physics::least_squares_weights(d0, d1, d2),
          linear_water(0.0, 0.0, drag),
          linear_water(d0.x, d0.y),
          linear_water(d1.x, d1.y),
          linear_water(d2.x, d2.y)};
}

HllCellEdges edges_of(const Patch& p, double step) {
  return physics::hll_edges(p.own, p.n0, p.n1, p.n2, p.cell, p.weights, step, zero_depth);
}

std::vector<HllEdgeState> all(const HllCellEdges& edges) { return {edges.k0, edges.k1, edges.k2}; }

TEST(HllEdgeStates, AreExactOnALinearFieldAtTheStartOfAStep) {
  const Patch p = linear_patch();
  const HllCellEdges edges = edges_of(p, 0.0);
  const physics::PlanVector r[] = {
      p.cell.shape.r0,
      p.cell.shape.r1,
      {-p.cell.shape.r0.x - p.cell.shape.r1.x, -p.cell.shape.r0.y - p.cell.shape.r1.y}};
  for (int k = 0; k < 3; ++k) {
    const HllNeighbour expected = linear_water(r[k].x, r[k].y);
    const HllEdgeState state = all(edges)[static_cast<std::size_t>(k)];
    EXPECT_NEAR(state.h, expected.water.h, 1e-6);
    EXPECT_NEAR(state.e, expected.bed + expected.water.h, 1e-6);
    EXPECT_NEAR(state.u, expected.water.u, 1e-6);
    EXPECT_NEAR(state.v, expected.water.v, 1e-6);
  }
}

TEST(HllEdgeStates, MoveByTheEquationsForHalfAStep) {
  const double drag = 0.5, tau = 0.5 * dt;
  const Patch p = linear_patch(drag);
  const HllCellEdges now = edges_of(p, 0.0), later = edges_of(p, dt);
  const double h = 2.0, u = 2.0, v = -1.0;
  const double depth_x = level_slope.x - bed_slope.x, depth_y = level_slope.y - bed_slope.y;
  const double dh = -tau * (u * depth_x + v * depth_y + h * (u_slope.x + v_slope.y));
  const double du =
      (u - tau * (u * u_slope.x + v * u_slope.y + 9.81 * level_slope.x)) / (1.0 + tau * drag) - u;
  const double dv =
      (v - tau * (u * v_slope.x + v * v_slope.y + 9.81 * level_slope.y)) / (1.0 + tau * drag) - v;
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(all(later)[k].h - all(now)[k].h, dh, 1e-6);
    EXPECT_NEAR(all(later)[k].e - all(now)[k].e, dh, 1e-6);
    EXPECT_NEAR(all(later)[k].u - all(now)[k].u, du, 1e-6);
    EXPECT_NEAR(all(later)[k].v - all(now)[k].v, dv, 1e-6);
  }
}

TEST(HllEdgeStates, ALakeAtRestIsLevelAndStillWhateverItsBed) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const auto lake = [&] {
      const double bed = random.between(-3.0, 1.0);
      return HllNeighbour{{bed < 0.0 ? 0.0 - bed : 0.0, 0.0, 0.0, 0.0}, bed};
    };
    const HllNeighbour own = lake(), n0 = lake(), n1 = lake(), n2 = lake();
    const double level = own.bed + own.water.h;
    const HllCellEdges edges =
        physics::hll_edges(own, n0, n1, n2, random.cell(), random.weights(), dt, zero_depth);
    if (own.water.h <= zero_depth) continue;
    for (const HllEdgeState& state : all(edges)) {
      EXPECT_EQ(state.e, level);
      EXPECT_EQ(state.u, 0.0);
      EXPECT_EQ(state.v, 0.0);
    }
    EXPECT_EQ(edges.source.x, 0.0);
    EXPECT_EQ(edges.source.y, 0.0);
  }
}

TEST(HllEdgeStates, NoEdgeIsBelowItsBedAndNoneFallsDryWithinTheStep) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const HllNeighbour own = random.neighbour();
    const HllCellEdges edges =
        physics::hll_edges(own, random.neighbour(), random.neighbour(), random.neighbour(),
                           random.cell(), random.weights(), random.between(0.0, 1.0), zero_depth);
    for (const HllEdgeState& state : all(edges)) {
      EXPECT_GE(state.h, 0.0);
      EXPECT_GE(state.cap, 0.0);
      EXPECT_LE(state.h, 6.0 * own.water.h);
    }
  }
}

TEST(HllEdgeStates, TheSharesOfAllEdgesAreWhatTheCellHolds) {
  Source random;
  int wet = 0;
  for (int i = 0; i < trials; ++i) {
    const HllNeighbour own = random.neighbour();
    const physics::HllCell cell = random.cell();
    const double step = random.between(0.01, 1.0);
    const HllCellEdges edges =
        physics::hll_edges(own, random.neighbour(), random.neighbour(), random.neighbour(), cell,
                           random.weights(), step, zero_depth);
    const double shared = (edges.k0.cap + edges.k1.cap + edges.k2.cap) * step;
    const double held = own.water.h / cell.reciprocal_area;
    EXPECT_LE(shared, held * (1.0 - 0.9e-12));
    EXPECT_GE(shared, held * (1.0 - 1.1e-12));
    wet += held > 0.0;
  }
  EXPECT_GT(wet, trials / 2);
}

TEST(HllEdgeStates, OfADryCellStandStill) {
  Source random;
  const HllNeighbour own{{0.5 * zero_depth, 0.0, 0.0, 0.0}, 1.0};
  const HllCellEdges edges =
      physics::hll_edges(own, random.neighbour(), random.neighbour(), random.neighbour(),
                         random.cell(), random.weights(), dt, zero_depth);
  for (const HllEdgeState& state : all(edges)) {
    EXPECT_EQ(state.h, own.water.h);
    EXPECT_EQ(state.u, 0.0);
    EXPECT_EQ(state.v, 0.0);
  }
}

TEST(HllEdgeStates, ADryBankDoesNotTiltTheWater) {
  Patch p = linear_patch();
  const HllNeighbour lake{{1.0, 0.0, 0.0, 0.0}, 0.0};
  p.own = p.n1 = p.n2 = lake;
  p.n0 = {{0.0, 0.0, 0.0, 0.0}, 5.0};
  p.cell.bed_slope = {0.0, 0.0};
  for (const HllEdgeState& state : all(edges_of(p, dt))) EXPECT_EQ(state.e, 1.0);
}

TEST(HllEdgeStates, WaterTiltsTowardsADryNeighbourThatLiesLower) {
  Patch p = linear_patch();
  p.own.water = {1.0, 0.0, 0.0, 0.0};
  p.own.bed = 0.0;
  p.n0 = {{0.0, 0.0, 0.0, 0.0}, -2.0};
  p.n1 = p.n2 = {{1.5, 0.0, 0.0, 0.0}, 0.0};
  p.cell.bed_slope = {0.0, 0.0};
  EXPECT_LT(edges_of(p, 0.0).k0.e, 1.0 - 0.1);
}

TEST(HllEdgeStates, VelocitiesAreNotSeenOverABrink) {
  const auto slope_of_u = [](double bed_below, double bed_slope_of_cell) {
    Patch p = linear_patch();
    p.own.bed = p.n1.bed = p.n2.bed = 0.0;
    p.own.water = {0.2, 1.0, 0.0, 0.0};
    p.n1.water = p.n2.water = {0.2, 0.5, 0.0, 0.0};
    p.n0 = {{0.1, 6.0, 0.0, 0.0}, bed_below};
    p.cell.bed_slope = {bed_slope_of_cell, 0.0};
    return edges_of(p, 0.0).k0.u - edges_of(p, 0.0).k1.u;
  };
  EXPECT_EQ(slope_of_u(-0.5, 0.0), 0.0);
  EXPECT_GT(slope_of_u(-0.05, 0.0), 0.1);
  EXPECT_GT(slope_of_u(-0.5, -0.4), 0.1);  // a slope, no brink
}

TEST(HllEdgeStates, TheLevelGoesOnBeyondAnOpenBoundary) {
  Patch p = linear_patch();
  const physics::HllTriangle& shape = p.cell.shape;
  const physics::PlanVector d1{2 * shape.r1.x, 2 * shape.r1.y};
  const physics::PlanVector d2{-2 * (shape.r0.x + shape.r1.x), -2 * (shape.r0.y + shape.r1.y)};
  p.n0 = p.own;
  p.weights = physics::least_squares_weights({0.0, 0.0}, d1, d2);
  const HllEdgeState open = edges_of(p, 0.0).k0;
  EXPECT_NEAR(open.e, 3.0 + level_slope.x * shape.r0.x + level_slope.y * shape.r0.y, 1e-6);
  // Beside a dry neighbour it does not.
  p.n2 = {{0.0, 0.0, 0.0, 0.0}, 9.0};
  EXPECT_NEAR(edges_of(p, 0.0).k0.e, 3.0, 0.05);
}

TEST(HllEdgeStates, MomentumIsKeptOverALevelBed) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    HllNeighbour own = random.neighbour();
    if (own.water.h <= zero_depth) continue;
    physics::HllCell cell = random.cell();
    cell.bed_slope = {0.0, 0.0};
    const HllCellEdges edges =
        physics::hll_edges(own, random.neighbour(), random.neighbour(), random.neighbour(), cell,
                           random.weights(), 0.0, zero_depth);
    const physics::OutwardNormals n = physics::outward_normals(cell.shape);
    const auto thrust = [](const HllEdgeState& state) { return 4.905 * state.h * state.h; };
    const double x =
        n.k0.x * thrust(edges.k0) + n.k1.x * thrust(edges.k1) + n.k2.x * thrust(edges.k2);
    const double y =
        n.k0.y * thrust(edges.k0) + n.k1.y * thrust(edges.k1) + n.k2.y * thrust(edges.k2);
    EXPECT_NEAR(edges.source.x, x * cell.reciprocal_area, 1e-9 * (1.0 + std::fabs(x)));
    EXPECT_NEAR(edges.source.y, y * cell.reciprocal_area, 1e-9 * (1.0 + std::fabs(y)));
  }
}

}  // namespace hll_edge_states_test
