// Ranks whose parts are on devices give the bits of one engine on the host, and copy no more after
// a step than what they tell each other.
#include <gtest/gtest.h>

#include <barrier>

#include "engine/device/Emulator.hpp"
#include "engine/device/StepClock.hpp"
#include "ranks/RanksInProcess.hpp"

using namespace test_ranks;

namespace {

using cases::Scheme;
using engine::device::EmulatedTraffic;

class RanksOnDevices : public RanksInProcess {
 protected:
  static constexpr int per_patch = 64;
  const engine::Processor device_{.device = engine::Device::emulated};

  std::vector<ranks::Share> shares_along_curve(const cases::Case& contents, int count) {
    return shares_of(contents, ranks::cut_along_curve(contents.mesh, count));
  }

  void expect_same_as_on_host(const Options& options, Scheme scheme, int steps) {
    cases::Case contents = basin(options);
    contents.scheme = scheme;
    const Course expected = run_alone(contents, steps);
    for (const int count : {1, 2, 3, 5}) {
      const auto shares = shares_along_curve(contents, count);
      expect_same(contents, expected, shares, 1, per_patch, device_);
      expect_same_where_nobody_looks(expected, shares);
    }
  }

  /// Steps with nothing in between that would bring a state to the host.
  void expect_same_where_nobody_looks(const Course& expected,
                                      const std::vector<ranks::Share>& shares) {
    run_side_by_side(
        shares, 1, per_patch,
        [&](int rank, engine::Engine& engine) {
          for (int step = 0; step < expected.count(); ++step) {
            const double next = courant * engine.advance({expected.times[at(step)], 0.0, t_end,
                                                          expected.steps[at(step)]});
            EXPECT_EQ(next, expected.steps[at(step + 1)]) << "step " << step;
          }
          const std::vector<Number> own = own_cells_of(shares[at(rank)].part);
          EXPECT_TRUE(have_same_bits(engine.state(), part_of(expected.states.back(), own)));
        },
        device_);
  }
};

/// What a rank copies in a step: its clock there and back, which patches took part, and so many
/// columns of the cells that others see and of its ghosts.
std::size_t bytes_of_step(const cases::Part& part, std::size_t sent, std::size_t received) {
  const std::size_t patches = (at(part.owned) + 63) / 64;
  return 2 * sizeof(engine::device::StepClock) + patches +
         sizeof(double) * (sent * part.border.size() + received * at(part.ghosts()));
}

}  // namespace

TEST_F(RanksOnDevices, GiveTheBitsOfTheHost) {
  for (const bool mostly_dry : {false, true}) {
    for (const Scheme scheme : {Scheme::lhllc, Scheme::hll1, Scheme::hll2}) {
      expect_same_as_on_host({.mostly_dry = mostly_dry}, scheme, 40);
    }
    for (const Scheme scheme : {Scheme::lhllc, Scheme::hll1}) {
      expect_same_as_on_host({.sediments = true, .mostly_dry = mostly_dry}, scheme, 40);
    }
  }
}

TEST_F(RanksOnDevices, CopyOnlyTheStatesThatTheyTellEachOther) {
  struct Model {
    bool sediments;
    Scheme scheme;
    std::size_t sent, received;  ///< columns; the bed of a ghost follows from what is sent
  };
  constexpr Model models[] = {
      {false, Scheme::lhllc, 3, 3}, {false, Scheme::hll2, 3, 3}, {true, Scheme::lhllc, 7, 8}};
  for (const Model& model : models) {
    cases::Case contents = basin({.sediments = model.sediments});
    contents.scheme = model.scheme;
    for (const int count : {1, 2, 3, 5}) {
      const auto shares = shares_along_curve(contents, count);
      std::size_t expected = 0;
      for (const ranks::Share& share : shares) {
        expected += bytes_of_step(share.part, model.sent, model.received);
      }
      std::barrier all_are_here(count);
      run_side_by_side(
          shares, 1, per_patch,
          [&](int rank, engine::Engine& engine) {
            double t = 0.0, dt = courant * engine.stable_step(t);
            for (int step = 0; step < 12; ++step) {
              all_are_here.arrive_and_wait();
              const std::size_t before = EmulatedTraffic::bytes;
              all_are_here.arrive_and_wait();
              dt = courant * engine.advance({t, 0.0, t_end, dt});
              t += dt;
              all_are_here.arrive_and_wait();
              // The first two steps bring what the ranks start with, and drop given surfaces.
              if (rank == 0 && step > 1) {
                EXPECT_EQ(EmulatedTraffic::bytes - before, expected);
              }
            }
          },
          device_);
    }
  }
}

TEST_F(RanksOnDevices, DoNotRace) {
  const cases::Case contents = basin({});
  const Course expected = run_alone(contents, 4);
  const engine::Processor watched{.device = engine::Device::watched};
  expect_same(contents, expected, shares_along_curve(contents, 3), 1, per_patch, watched);
}
