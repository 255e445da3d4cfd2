// An engine that goes on from the state of another one knows which of its patches are at rest.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "engine/Engine.hpp"
#include "model/SWE.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/case_of.hpp"

namespace {

/// Water behind a dam that breaks, while most of the basin is dry.
cases::Case dry_basin() {
  const support::RunGlobals globals(1e-3, 1.0, 100.0);
  const auto model = support::build_rectangle<SWE>({60, 30, 60.0, 30.0});
  support::fill(*model, [](double x, double) { return x < 6.0 ? 1.0 : -1.0; });
  return support::case_of(*model);
}

double step(engine::Engine& engine, double t, double dt) {
  return engine.advance({t, 0.0, 100.0, dt});
}

void expect_same_steps_after(const engine::Processor& processor) {
  constexpr int per_patch = 64;
  const cases::Case contents = dry_basin();
  engine::Engine before(contents, 1, per_patch, processor);
  double t = 0.0, dt = 0.5 * before.stable_step(t);
  for (int k = 0; k < 4; ++k) {
    dt = 0.5 * step(before, t, dt);
    t += dt;
  }
  // Others have cut the cells into patches of their own.
  const std::vector<char> awake = before.awake();
  const engine::State state = before.state();
  engine::Engine after(contents, 1, 2 * per_patch, processor);
  engine::Engine woken(contents, 1, 2 * per_patch, processor);
  after.set_state(state);
  after.set_awake(awake);
  woken.set_state(state);
  const int all = static_cast<int>(after.tables().patches.patches.size());
  const double next = step(before, t, dt);
  EXPECT_EQ(step(after, t, dt), next);
  EXPECT_EQ(step(woken, t, dt), next);
  EXPECT_EQ(woken.active_patches(), all);
  EXPECT_LT(after.active_patches(), all / 2);
  EXPECT_GT(after.active_patches(), 0);
  for (int k = 0; k < 40; ++k) {
    t += 0.5 * next;
    EXPECT_EQ(step(after, t, 0.5 * next), step(before, t, 0.5 * next));
  }
  const engine::State found = after.state(), expected = before.state();
  EXPECT_EQ(std::memcmp(found.h.data(), expected.h.data(), 8 * found.h.size()), 0);
  EXPECT_EQ(std::memcmp(found.qx.data(), expected.qx.data(), 8 * found.qx.size()), 0);
}

}  // namespace

TEST(AwakeCells, AreAllThatTheNextStepLooksAt) { expect_same_steps_after({}); }

TEST(AwakeCells, AreThoseOfTheLastStepOnADevice) {
  expect_same_steps_after({.device = engine::Device::emulated});
}

TEST(Busy, AreTheWetCells) {
  const cases::Case contents = dry_basin();
  engine::Engine engine(contents, 1, 64);
  const std::vector<char> busy = engine.busy();
  const engine::State state = engine.state();
  ASSERT_EQ(busy.size(), state.h.size());
  for (std::size_t cell = 0; cell < busy.size(); ++cell) {
    EXPECT_EQ(busy[cell] != 0, state.h[cell] > contents.zero_depth) << cell;
  }
}

TEST(Busy, AreDryCellsThatWaterMayComeTo) {
  cases::Case contents = dry_basin();
  ASSERT_FALSE(contents.mesh.boundaries.empty());
  cases::Boundary& last = contents.mesh.boundaries.back();
  const auto cell = cases::at(contents.mesh.left[cases::at(last.edge)]);
  engine::Engine before(contents, 1, 64);
  ASSERT_EQ(before.busy()[cell], 0);
  last.code = edge_code::discharge;
  engine::Engine engine(contents, 1, 64);
  EXPECT_EQ(engine.busy()[cell], 1);
}
