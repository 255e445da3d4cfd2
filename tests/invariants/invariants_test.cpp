// What no numbering, no direction of the axes and no motion of the water may change, on random
// meshes and states, for the objects and for the tables.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numbers>

#include "fields/ObjectsFlow.hpp"
#include "support/PlanMesh.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TablesOfModel.hpp"
#include "support/flow.hpp"

namespace {

constexpr double zero_depth = 1e-4;
constexpr int steps = 150;
constexpr double courant = 0.5;
constexpr unsigned seeds = 5;

/// Shallow water between hummocks, part of them dry.
const support::Weather hummocks{0.6, 0.5, 0.1, 0.5, 0.0};
/// Deep rough water, with friction.
const support::Weather deep{0.5, 3.0, 0.3, 1.0, 0.03};

support::Plan random_plan(const support::Weather& weather, unsigned seed) {
  std::mt19937 generator(seed);
  return support::random_plan(14, 9, weather, generator);
}

/// The model after some steps; 0 threads stand for the objects.
std::unique_ptr<SWE> after_steps(const support::Plan& plan, int threads, int count = steps) {
  const support::RunGlobals globals(zero_depth);
  auto model = support::build(plan);
  if (threads == 0) {
    fields::ObjectsFlow flow(*model);
    support::advance(flow, count, courant);
  } else {
    support::TablesOfModel tables(*model, threads);
    support::advance(tables.flow, count, courant);
    support::store(tables.flow, *model);
  }
  return model;
}

const ComputationalCell& cell_of(const SWE& model, const support::Permutation& cells,
                                 std::size_t i) {
  return *model.cells[static_cast<std::size_t>(cells[i])];
}

struct Renumbering {
  support::Permutation points, cells, edges;
};

Renumbering random_renumbering(const support::Plan& plan, bool slot_order_is_kept, unsigned seed) {
  std::mt19937 generator(1000 + seed);
  return {support::random_permutation(plan.points.size(), generator),
          support::random_permutation(plan.cells.size(), generator),
          slot_order_is_kept ? support::random_permutation_within_cells(plan, generator)
                             : support::random_permutation(plan.edges.size(), generator)};
}

/// Integrals over the domain: of h, |q| and of both squared.
struct Norms {
  double h = 0.0, q = 0.0, h2 = 0.0, q2 = 0.0;
};

Norms norms_of(const SWE& model) {
  Norms sum;
  for (const auto& cell : model.cells) {
    const double q = std::hypot(cell->U.qx, cell->U.qy);
    sum.h += cell->area * cell->U.h;
    sum.q += cell->area * q;
    sum.h2 += cell->area * cell->U.h * cell->U.h;
    sum.q2 += cell->area * q * q;
  }
  return sum;
}

/// The objects, and the tables on one and on two threads.
class Invariants : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Paths, Invariants, testing::Values(0, 1, 2));

}  // namespace

TEST_P(Invariants, RenumberingPermutesTheBitsWhereTheSlotOrderIsKept) {
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    const support::Plan plan = random_plan(hummocks, seed);
    const auto [points, cells, edges] = random_renumbering(plan, true, seed);
    const auto a = after_steps(plan, GetParam());
    const auto b = after_steps(support::renumber(plan, points, cells, edges), GetParam());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const HydraulicVariableSWE& U = cell_of(*b, cells, i).U;
      ASSERT_EQ(std::memcmp(&a->cells[i]->U, &U, sizeof U), 0) << "cell " << i << ", seed " << seed;
    }
    EXPECT_GT(support::largest_discharge(*a), 1e-3);
  }
}

TEST_P(Invariants, AnyRenumberingChangesResultsByRoundingOnly) {
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    const support::Plan plan = random_plan(hummocks, seed);
    const auto [points, cells, edges] = random_renumbering(plan, false, seed);
    const auto a = after_steps(plan, GetParam());
    const auto b = after_steps(support::renumber(plan, points, cells, edges), GetParam());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const HydraulicVariableSWE& U = a->cells[i]->U;
      const HydraulicVariableSWE& V = cell_of(*b, cells, i).U;
      ASSERT_NEAR(U.h, V.h, 1e-12) << "cell " << i << ", seed " << seed;
      ASSERT_NEAR(U.qx, V.qx, 1e-12) << "cell " << i << ", seed " << seed;
      ASSERT_NEAR(U.qy, V.qy, 1e-12) << "cell " << i << ", seed " << seed;
    }
  }
}

TEST_P(Invariants, RotationDoesNotChangeTheNorms) {
  for (const auto& weather : {hummocks, deep}) {
    for (unsigned seed = 1; seed <= seeds; ++seed) {
      const support::Plan plan = random_plan(weather, seed);
      const double angle = 37.0 * std::numbers::pi / 180.0;
      const Norms a = norms_of(*after_steps(plan, GetParam()));
      const Norms b = norms_of(*after_steps(support::rotate(plan, angle), GetParam()));
      EXPECT_NEAR(a.h, b.h, 1e-9 * a.h) << seed;
      EXPECT_NEAR(a.q, b.q, 1e-9 * a.q) << seed;
      EXPECT_NEAR(a.h2, b.h2, 1e-9 * a.h2) << seed;
      EXPECT_NEAR(a.q2, b.q2, 1e-9 * a.q2) << seed;
    }
  }
}

TEST_P(Invariants, AClosedBasinKeepsItsVolume) {
  for (const auto& weather : {hummocks, deep}) {
    for (unsigned seed = 1; seed <= seeds; ++seed) {
      const support::Plan plan = random_plan(weather, seed);
      const double before = support::volume_of(*support::build(plan));
      const auto after = after_steps(plan, GetParam(), 1000);
      EXPECT_NEAR(support::volume_of(*after), before, 1e-12 * before) << seed;
    }
  }
}
