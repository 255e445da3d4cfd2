// The tables on a device: their size, and what the host changes between steps.
#include "engine/device/DeviceBackend.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <span>

#include "engine/Engine.hpp"
#include "engine/device/make_device_backend.hpp"
#include "support/TriangleGrid.hpp"
#include "support/device_under_test.hpp"
#include "support/polygon_mesh.hpp"

namespace {

using engine::Device;
using engine::Engine;

/// Triangles with friction and open boundaries, wet in the west.
cases::Case valley(int nx, int ny) {
  support::TriangleGrid grid{.nx = nx, .ny = ny, .seed = 3};
  grid.level = [nx](double x, double) { return x < 0.4 * nx ? 1.0 : -1.0; };
  grid.west = {edge_code::discharge, -0.5};
  grid.east = {edge_code::transmissive};
  grid.zero_depth = 1e-3;
  cases::Case contents = grid.make();
  contents.scheme = cases::Scheme::lhllc;
  contents.fields.manning.assign(static_cast<std::size_t>(contents.mesh.n_cells()), 0.03);
  return contents;
}

void expect_same(const engine::State& a, const engine::State& b) {
  for (const engine::StateColumn column : engine::columns_of_flow) {
    const std::vector<double>&x = a.*column, &y = b.*column;
    ASSERT_EQ(x.size(), y.size());
    EXPECT_TRUE(x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0);
  }
}

/// Steps of the host and of a device side by side; change(engine, step) comes before each.
template <class Change>
void expect_same_steps(const cases::Case& contents, int steps, const Change& change) {
  Engine host(contents, 2, 64);
  Engine device(contents, 2, 64, {.device = support::device_under_test()});
  double t = 0.0;
  for (int step = 0; step < steps; ++step) {
    change(host, step);
    change(device, step);
    const double stable = host.stable_step(t);
    EXPECT_EQ(device.stable_step(t), stable);
    const engine::StepTimes times = {t, 0.0, 1e9, 0.4 * stable};
    EXPECT_EQ(device.advance(times), host.advance(times));
    EXPECT_EQ(device.active_patches(), host.active_patches());
    expect_same(device.state(), host.state());
    for (int b = 0; b < static_cast<int>(contents.mesh.boundaries.size()); ++b) {
      EXPECT_EQ(device.boundary_inflow(b).water, host.boundary_inflow(b).water);
      EXPECT_EQ(device.boundary_inflow(b).bed, host.boundary_inflow(b).bed);
    }
    t += times.dt;
  }
}

/// Blocks with so many words of scratch that a multiprocessor of compute capability 9.0 or 10.0 has
/// room for.
int blocks_of_multiprocessor(int words) {
  constexpr int bytes_of_multiprocessor = 228 * 1024, bytes_of_every_block = 1024;
  return bytes_of_multiprocessor /
         (words * static_cast<int>(sizeof(double)) + bytes_of_every_block);
}

}  // namespace

TEST(DeviceBackend, ThreePatchesHaveTheirScratchOnAMultiprocessorAtATime) {
  using engine::device::AdvancePatches;
  using engine::device::FindingsInScratch;
  const Engine engine(valley(100, 100), 1, 0, {.device = Device::emulated});
  ASSERT_GT(engine.tables().patches.patches.size(), 20U);
  const engine::device::PatchScratch room = engine::device::room_of(engine.tables());
  ASSERT_EQ(room.cells, engine::device::cells_per_patch(cases::Scheme::lhllc));
  for (const bool notes : {false, true}) {
    const auto words_with = [&](int words, bool watches_hyperbolicity) {
      return words + FindingsInScratch::words_of(
                         {engine::device::threads_of_patch, notes, watches_hyperbolicity});
    };
    const int water = words_with(AdvancePatches<false>::words_of(room), false);
    EXPECT_GE(blocks_of_multiprocessor(water), 3);
    const int bed = words_with(AdvancePatches<true>::words_of(room), true);
    EXPECT_GE(blocks_of_multiprocessor(bed), 2);
    EXPECT_EQ(engine::device::PatchKernels(engine.tables()).scratch_words(notes, false), water);
  }
}

TEST(DeviceBackend, StepsOnFromWhatTheHostChanges) {
  const cases::Number cells[] = {7, 90, 430, 431};
  const double rain[] = {1e-4, 2e-4, 1e-4, 0.0};
  const physics::InitialWater water[] = {
      {0.2, 0.1, 0.0}, {0.7, 0.0, 0.2}, {0.5, 0.3, 0.3}, {1.0, -0.1, 0.0}};
  const cases::Case contents = valley(60, 10);
  int inlet = 0;
  const auto& boundaries = contents.mesh.boundaries;
  while (boundaries.at(static_cast<std::size_t>(inlet)).code != edge_code::discharge) ++inlet;
  double before = 0.0;
  expect_same_steps(contents, 40, [&](Engine& engine, int step) {
    if (step == 10) engine.impose_rain(std::span(cells).first(2), std::span(rain).first(2));
    if (step == 15) engine.impose_rain(cells, rain);
    if (step == 20) engine.set_water(cells, water);
    if (step == 25) engine.keep_maxima(0.1);
    if (step == 30) {
      before = engine.boundary_inflow(inlet).water;
      engine.impose_on_boundary(inlet, -2.0);
    }
    if (step == 31) {
      EXPECT_NE(engine.boundary_inflow(inlet).water, before);
    }
  });
}

TEST(DeviceBackend, ABoundaryConditionBetweenCellsLeavesTheRightOneWithoutAFlux) {
  for (const bool has_sediments : {false, true}) {
    cases::Case contents = valley(24, 10);
    std::vector<cases::Boundary>& boundaries = contents.mesh.boundaries;
    for (cases::Number edge = 100; edge < 600; edge += 50) {
      if (contents.mesh.right[static_cast<std::size_t>(edge)] >= 0) {
        boundaries.push_back({edge, edge_code::wall, 0.0, -1});
      }
    }
    std::sort(boundaries.begin(), boundaries.end(),
              [](const auto& a, const auto& b) { return a.edge < b.edge; });
    contents.has_sediments = has_sediments;
    if (has_sediments) {
      contents.sediment = {0.8e-3, 2.65, 0.03, 0.42};
      contents.fields.sediment.assign(contents.fields.manning.size(), 0.05);
    }
    expect_same_steps(contents, 20, [](Engine&, int) {});
  }
}

TEST(DeviceBackend, TwoPatchesOfTheHllSchemesHaveTheirScratchOnAMultiprocessorAtATime) {
  using engine::device::AdvanceHll1;
  using engine::device::AdvanceHll2;
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    cases::Case contents = valley(100, 100);
    contents.scheme = scheme;
    const Engine engine(contents, 1, 0, {.device = Device::emulated});
    const engine::Tables& tables = engine.tables();
    ASSERT_EQ(tables.cells_per_patch(), engine::device::cells_per_patch(scheme));
    for (const bool notes : {false, true}) {
      constexpr bool has_demands = true;
      const engine::device::HllScratch room = engine::device::room_of(*tables.hll, has_demands);
      const int found = engine::device::FindingsInScratch::words_of(
          {engine::device::threads_of_patch, notes, false});
      EXPECT_GE(blocks_of_multiprocessor(found + AdvanceHll2::words_of(room)), 2);
      EXPECT_GE(blocks_of_multiprocessor(found + AdvanceHll1<false>::words_of(room)), 3);
      EXPECT_GE(blocks_of_multiprocessor(found + AdvanceHll1<true>::words_of(room)), 2);
    }
  }
}

TEST(DeviceBackend, RefusesCellsWhoseEdgesItsScratchHasNoRoomFor) {
  cases::Case contents;
  contents.fields.level = {1.0};
  contents.fields.qx = contents.fields.qy = {0.0};
  contents.zero_depth = 1e-3;
  contents.mesh = support::polygon_mesh(9000);
  EXPECT_NO_THROW(Engine(contents, 1, 0, {.device = Device::emulated}));
  contents.mesh = support::polygon_mesh(11000);
  EXPECT_NO_THROW(Engine(contents, 1));
  try {
    const Engine engine(contents, 1, 0, {.device = Device::emulated});
    ADD_FAILURE() << "nothing was refused";
  } catch (const std::runtime_error& error) {
    const std::string text = error.what();
    EXPECT_TRUE(text.starts_with("Error. A patch of this case needs ")) << text;
    EXPECT_NE(text.find(" but the device has 232448: "), std::string::npos) << text;
    EXPECT_NE(text.find("the processor can run them"), std::string::npos);
  }
}
