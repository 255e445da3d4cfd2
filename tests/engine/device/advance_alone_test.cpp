// Steps that a device computes by itself are those of the host, and nothing is copied between them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "engine/Engine.hpp"
#include "engine/device/Emulator.hpp"
#include "engine/device/StepClock.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/basin.hpp"
#include "support/device_under_test.hpp"

namespace {

using cases::Scheme;
using engine::Device;
using engine::Engine;
using engine::RunClock;
using engine::device::EmulatedTraffic;
using support::BasinOptions;

constexpr double never = HUGE_VAL;

class AdvanceAlone : public testing::Test {
 protected:
  cases::Case basin(Scheme scheme, const BasinOptions& options) {
    cases::Case contents = support::basin(options, folder_);
    contents.scheme = scheme;
    contents.cfl = 0.6;
    contents.t_end = support::basin_t_end;
    return contents;
  }

  /// A run, one step after the other or by itself.
  struct Run {
    const cases::Case& contents;
    Engine engine;
    RunClock clock;

    Run(const cases::Case& of, const engine::Processor& processor, int per_patch = 64)
        : contents(of), engine(of, 2, per_patch, processor) {
      engine.keep_maxima(0.3);
      clock = {of.t_start, of.cfl * engine.stable_step(of.t_start)};
    }

    void step() {
      const double applied = clock.dt;
      clock.begun = clock.t;
      clock.dt =
          contents.cfl * engine.advance({clock.t, contents.t_start, contents.t_end, applied});
      clock.t += cases::is_hll(contents.scheme) ? applied : clock.dt;
      ++clock.steps;
    }
    bool steps_alone(double t_stop, long steps) {
      return engine.advance_alone(
          clock, {contents.t_start, contents.t_end, t_stop, clock.steps + steps, 1e-8, contents.cfl,
                  !cases::is_hll(contents.scheme)});
    }
  };

  static void expect_same(Run& host, Run& device) {
    EXPECT_EQ(device.clock.t, host.clock.t);
    EXPECT_EQ(device.clock.dt, host.clock.dt);
    EXPECT_EQ(device.clock.begun, host.clock.begun);
    EXPECT_EQ(device.engine.active_patches(), host.engine.active_patches());
    const engine::State a = device.engine.state(), b = host.engine.state();
    for (const engine::StateColumn column : engine::columns_of_flow) {
      const std::vector<double>&x = a.*column, &y = b.*column;
      ASSERT_EQ(x.size(), y.size());
      ASSERT_TRUE(x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0)
          << device.clock.steps;
    }
    EXPECT_EQ(device.engine.tables().maxima->t, host.engine.tables().maxima->t);
    for (std::size_t r = 0; r < a.rain_clocks.size(); ++r) {
      EXPECT_EQ(a.rain_clocks[r].last_update_time, b.rain_clocks[r].last_update_time);
      EXPECT_EQ(a.rain_clocks[r].rain_dt, b.rain_clocks[r].rain_dt);
    }
    for (int k = 0; k < static_cast<int>(host.contents.mesh.boundaries.size()); ++k) {
      EXPECT_EQ(device.engine.boundary_inflow(k).water, host.engine.boundary_inflow(k).water) << k;
      EXPECT_EQ(device.engine.boundary_inflow(k).bed, host.engine.boundary_inflow(k).bed) << k;
    }
  }

  /// Steps of both, where the device goes alone for some steps, then stops with the host.
  static void expect_same_steps(const cases::Case& contents, Device device_kind, int stretches) {
    Run host(contents, {}), device(contents, {.device = device_kind});
    EXPECT_FALSE(device.steps_alone(never, 1));  // the first step has surfaces that are given
    host.step();
    device.step();
    const int lengths[] = {2, 37, 5};
    for (int k = 0; k < stretches && !HasFailure(); ++k) {
      const int steps = lengths[k % 3];
      ASSERT_TRUE(device.steps_alone(never, steps));
      for (int step = 0; step < steps && host.clock.t < contents.t_end; ++step) host.step();
      ASSERT_EQ(device.clock.steps, host.clock.steps);
      expect_same(host, device);
      if (k == 1) {  // a step that the host begins, in between
        host.step();
        device.step();
      }
    }
  }

  support::TemporaryFolder folder_;
};

}  // namespace

TEST_F(AdvanceAlone, GivesTheStatesOfTheHost) {
  for (int k = 0; k < 16; ++k) {
    BasinOptions options = {.friction = (k & 1) != 0,
                            .rain = (k & 2) != 0,
                            .soils = (k & 4) != 0,
                            .mostly_dry = (k & 8) != 0};
    for (const Scheme scheme : {Scheme::lhllc, Scheme::hll1, Scheme::hll2}) {
      expect_same_steps(basin(scheme, options), support::device_under_test(), 3);
    }
    options.sediments = true;
    for (const Scheme scheme : {Scheme::lhllc, Scheme::hll1}) {
      expect_same_steps(basin(scheme, options), support::device_under_test(), 3);
    }
  }
}

TEST_F(AdvanceAlone, DoesNotRace) {
  for (const Scheme scheme : {Scheme::lhllc, Scheme::hll2}) {
    expect_same_steps(basin(scheme, {}), Device::watched, 1);
  }
}

TEST_F(AdvanceAlone, HaltsAtTheFirstStateFromATimeOnAndAtTheEnd) {
  const cases::Case contents = basin(Scheme::hll2, {});
  Run host(contents, {}), device(contents, {.device = support::device_under_test()});
  host.step();
  device.step();
  for (const double t_stop : {0.1, 0.2, 0.2, 0.9}) {
    ASSERT_TRUE(device.steps_alone(t_stop, 1000000));
    do {  // one at least
      host.step();
    } while (host.clock.t < t_stop);
    expect_same(host, device);
  }
  ASSERT_TRUE(device.steps_alone(never, 1000000));
  EXPECT_GE(device.clock.t, contents.t_end);
  EXPECT_LT(device.clock.begun, contents.t_end);
}

TEST_F(AdvanceAlone, HaltsBeforeAStepThatIsTooSmall) {
  const cases::Case contents = basin(Scheme::lhllc, {});
  Run device(contents, {.device = support::device_under_test()});
  device.step();
  ASSERT_TRUE(device.steps_alone(never, 1000000));  // a film races
  EXPECT_LT(device.clock.t, contents.t_end);
  EXPECT_LE(device.clock.dt, 1e-8);
}

TEST_F(AdvanceAlone, GoesOnFromWhatTheHostChanges) {
  const cases::Case contents = basin(Scheme::lhllc, {.soils = false, .mostly_dry = true});
  Run host(contents, {}), device(contents, {.device = support::device_under_test()});
  const cases::Number cells[] = {7, 90, 430, 431};
  const double rain[] = {1e-4, 2e-4, 1e-4, 0.0};
  const physics::InitialWater water[] = {
      {0.2, 0.1, 0.0}, {0.7, 0.0, 0.2}, {0.5, 0.3, 0.3}, {1.0, -0.1, 0.0}};
  for (Run* run : {&host, &device}) run->step();
  for (int k = 0; k < 6; ++k) {
    for (Run* run : {&host, &device}) {
      if (k == 1) run->engine.impose_rain(cells, rain);
      if (k == 2) run->engine.set_water(cells, water);
      if (k == 3) run->engine.impose_on_boundary(0, 0.3);
      if (k == 4) run->engine.note_maxima(run->clock.t);
    }
    if (k == 5) device.engine.set_state(host.engine.state());
    ASSERT_TRUE(device.steps_alone(never, 9));
    for (int step = 0; step < 9; ++step) host.step();
    expect_same(host, device);
  }
}

TEST_F(AdvanceAlone, CopiesNothingBetweenTheSteps) {
  if (support::device_under_test() != Device::emulated) GTEST_SKIP() << "nobody counts copies";
  for (const Scheme scheme : {Scheme::lhllc, Scheme::hll1, Scheme::hll2}) {
    const cases::Case contents = basin(scheme, {});
    Run device(contents, {.device = support::device_under_test()});
    device.step();
    device.steps_alone(never, 2);
    const auto bytes_of = [&](int steps) {
      const std::size_t bytes = EmulatedTraffic::bytes, launches = EmulatedTraffic::launches;
      device.steps_alone(never, steps);
      EXPECT_GT(EmulatedTraffic::launches, launches);
      return EmulatedTraffic::bytes - bytes;
    };
    const std::size_t of_one_step = bytes_of(1);
    EXPECT_EQ(bytes_of(30), of_one_step);
    EXPECT_EQ(bytes_of(20), of_one_step);
    // Now and then the host asks whether the clock has halted.
    constexpr std::size_t of_clock = 2 * sizeof(engine::device::StepClock);
    EXPECT_EQ(bytes_of(100), of_one_step + 3 * of_clock);
    // Who looks at the depths of some cells names these, and copies no more.
    const std::vector<cases::Number> some = {700, 3, 4, 90};
    std::vector<double> of_some(some.size());
    const std::size_t before_some = EmulatedTraffic::bytes;
    device.engine.read(device.engine.columns().h, some, of_some);
    EXPECT_EQ(EmulatedTraffic::bytes - before_some, some.size() * (sizeof(double) + sizeof(int)));
    // Who looks at depths copies these, once; who looks at all states the rest.
    std::vector<double> depths(contents.fields.level.size());
    for (const std::size_t columns : {1, 0}) {
      const std::size_t before = EmulatedTraffic::bytes;
      device.engine.read(device.engine.columns().h, depths);
      EXPECT_EQ(EmulatedTraffic::bytes - before, columns * depths.size() * sizeof(double));
    }
    for (std::size_t k = 0; k < some.size(); ++k) {
      EXPECT_EQ(of_some[k], depths[static_cast<std::size_t>(some[k])]);
    }
    EXPECT_EQ(device.engine.state().h, depths);
    const std::size_t before = EmulatedTraffic::bytes;
    device.engine.state();
    EXPECT_EQ(EmulatedTraffic::bytes, before);
  }
}
