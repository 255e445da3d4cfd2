// What a device copies for a report after every step.
#include <gtest/gtest.h>

#include <vector>

#include "engine/Engine.hpp"
#include "engine/device/Emulator.hpp"
#include "engine/device/PatchFindings.hpp"
#include "engine/device/StepClock.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/basin.hpp"

using cases::Scheme;
using engine::Engine;
using engine::device::EmulatedTraffic;

namespace {

/// Bytes that a body copies.
template <class Body>
std::size_t bytes_of(const Body& body) {
  const std::size_t before = EmulatedTraffic::bytes;
  body();
  return EmulatedTraffic::bytes - before;
}

}  // namespace

TEST(NotesOnADevice, CopyWhatPatchesFoundAndTheCellsThatMayHaveSetTheStep) {
  const support::TemporaryFolder folder;
  constexpr std::size_t per_patch = 64;
  for (const Scheme scheme : {Scheme::lhllc, Scheme::hll2}) {
    cases::Case contents = support::basin({}, folder);
    contents.scheme = scheme;
    Engine engine(contents, 2, per_patch, {.device = engine::Device::emulated});
    engine.watch(0.0);
    const std::size_t patches = engine.tables().patches.patches.size();
    double t = 0.0, dt = 0.4 * engine.stable_step(t);
    const auto step = [&] {
      dt = 0.4 * engine.advance({t, 0.0, support::basin_t_end, dt});
      t += dt;
    };
    step();  // brings what the run starts with

    constexpr std::size_t water = 3 * sizeof(double) + sizeof(int);  // of a cell, and its place
    const std::size_t told = 2 * sizeof(engine::device::StepClock) +
                             patches * (sizeof(char) + sizeof(engine::device::PatchFindings));
    const std::size_t all = contents.fields.level.size() * water;
    std::size_t least = all;
    for (int k = 0; k < 30; ++k) {
      const std::size_t copied = bytes_of(step) - told;
      EXPECT_LE(copied, water * (1 + 3 * per_patch)) << k;  // the step's, two records'
      EXPECT_LT(copied, all / 2) << k;
      least = std::min(least, copied);
    }
    // Mostly the cell that set the step before does so again.
    EXPECT_LE(least, water);

    // What a report reads of a step: the cell that set it, and what passed the boundaries.
    const std::size_t mass = contents.mesh.boundaries.size() * sizeof(double);
    step();
    const cases::Number cell = engine.notes().limiting_cell;
    ASSERT_GE(cell, 0);
    EXPECT_LE(bytes_of([&] { engine.place_at_hand(cell); }), water);
    EXPECT_EQ(bytes_of([&] { engine.boundary_inflow(0); }), mass);
    EXPECT_EQ(bytes_of([&] { engine.boundary_inflow(1); }), 0U);
    EXPECT_GT(bytes_of([&] { engine.unseen_depths(cell); }), all);
    EXPECT_EQ(bytes_of([&] { engine.unseen_depths(cell + 1); }), 0U);
  }
}
