// Ranks whose parts are on devices give the bits of one engine on the host, whether their messages
// go from device to device or through the host, and copy no more after a step than these messages.
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
      for (const bool directly : {false, true}) {
        expect_same(contents, expected, shares, 1, per_patch, device_, directly);
        expect_same_where_nobody_looks(expected, shares, directly);
      }
    }
  }

  /// Steps with nothing in between that would bring a state to the host.
  void expect_same_where_nobody_looks(const Course& expected,
                                      const std::vector<ranks::Share>& shares, bool directly) {
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
        device_, directly);
  }

  /// What all ranks copy in each of ten steps, behind two that bring what the ranks start with and
  /// drop given surfaces.
  std::vector<std::size_t> bytes_of_every_step(const std::vector<ranks::Share>& shares,
                                               bool directly) {
    std::barrier all_are_here(static_cast<std::ptrdiff_t>(shares.size()));
    std::vector<std::size_t> bytes;
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
            if (rank == 0 && step > 1) bytes.push_back(EmulatedTraffic::bytes - before);
          }
        },
        device_, directly);
    return bytes;
  }
};

/// What a rank copies in a step: its clock there and back, which patches took part, and so many
/// columns of the cells of its halo.
std::size_t bytes_of_step(const ranks::Share& share, std::size_t columns) {
  const std::size_t patches = (at(share.part.owned) + 63) / 64;
  std::size_t cells = 0;
  for (const ranks::Halo& halo : share.halos) cells += halo.sent.size() + halo.received.size();
  return 2 * sizeof(engine::device::StepClock) + patches + sizeof(double) * columns * cells;
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
    std::size_t columns;  ///< the bed of a ghost follows from what is sent
  };
  constexpr Model models[] = {
      {false, Scheme::lhllc, 3}, {false, Scheme::hll2, 3}, {true, Scheme::lhllc, 7}};
  for (const Model& model : models) {
    cases::Case contents = basin({.sediments = model.sediments});
    contents.scheme = model.scheme;
    for (const int count : {1, 2, 3, 5}) {
      for (const bool directly : {false, true}) {
        const auto shares = shares_along_curve(contents, count);
        std::size_t expected = 0;
        for (const ranks::Share& share : shares) {
          expected += bytes_of_step(share, directly ? 0 : model.columns);
        }
        EXPECT_EQ(bytes_of_every_step(shares, directly), std::vector<std::size_t>(10, expected));
      }
    }
  }
}

TEST_F(RanksOnDevices, DoNotRace) {
  const cases::Case contents = basin({});
  const Course expected = run_alone(contents, 4);
  const engine::Processor watched{.device = engine::Device::watched};
  for (const bool directly : {false, true}) {
    expect_same(contents, expected, shares_along_curve(contents, 3), 1, per_patch, watched,
                directly);
  }
}

TEST_F(RanksOnDevices, SayWhichWayTheirMessagesGo) {
  const cases::Case contents = basin({});
  for (const bool directly : {false, true}) {
    const auto way_of = [&](int count) {
      std::string way;
      run_side_by_side(
          shares_along_curve(contents, count), 1, per_patch,
          [&](int rank, engine::Engine& engine) {
            if (rank == 0) way = engine.instruction_set();
          },
          device_, directly);
      return way;
    };
    EXPECT_EQ(way_of(1), "emulated");
    EXPECT_EQ(way_of(2), directly ? "emulated, messages from its memory"
                                  : "emulated, messages through the host");
  }
}
