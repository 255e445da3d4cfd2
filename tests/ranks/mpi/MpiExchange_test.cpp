// Processes of an MPI job give the bits of one engine, after every step. Every process runs all
// tests, so that they meet in the same calls: MpiExchange_test RANKS, under mpiexec.
#include "ranks/mpi/MpiExchange.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "ranks/PartsOfCourse.hpp"

namespace {

int rank_here() {
  int rank = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  return rank;
}
int number_of_ranks() {
  int ranks = 0;
  MPI_Comm_size(MPI_COMM_WORLD, &ranks);
  return ranks;
}

class MpiExchange : public test_ranks::PartsOfCourse {
 protected:
  static ranks::Share share_here(const cases::Case& contents) {
    return std::move(shares_of(contents, ranks::cut_along_curve(contents.mesh, number_of_ranks()))
                         .at(engine::at(rank_here())));
  }

  /// The part of this process and its exchange with the others.
  struct Part {
    explicit Part(const cases::Case& contents) : Part(share_here(contents)) {}
    explicit Part(ranks::Share share)
        : cells(std::move(share.part)),
          exchange(std::make_unique<ranks::MpiExchange>(MPI_COMM_WORLD, share.halos)) {}

    cases::Part cells;
    std::unique_ptr<ranks::MpiExchange> exchange;
  };

  static void expect_same(const cases::Case& contents, int steps, int threads = 1) {
    const test_ranks::Course expected = run_alone(contents, steps);
    EXPECT_FALSE(have_same_bits(expected.states.front(), expected.states.back()));
    const Part part(contents);
    engine::Engine engine(part.cells, *part.exchange, threads, 64);
    engine.keep_maxima(test_ranks::arrival_depth);
    expect_same_steps(contents, expected, part.cells, engine, 0);
  }
};

}  // namespace

TEST_F(MpiExchange, GivesTheSameBitsForWaterWithAllSources) {
  expect_same(basin({.rain = false, .soils = false}), 40);
  expect_same(basin({}), 40, 2);
}

TEST_F(MpiExchange, GivesTheSameBitsWithSediments) { expect_same(basin({.sediments = true}), 40); }

TEST_F(MpiExchange, GivesTheSameBitsByTheSchemesThatLookTwoCellsFar) {
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    cases::Case contents = basin({.mostly_dry = true});
    contents.scheme = scheme;
    expect_same(contents, 40);
  }
}

TEST_F(MpiExchange, GoesOnFromAnyState) {
  const cases::Case contents = basin({.sediments = true});
  const test_ranks::Course expected = run_alone(contents, 30);
  const Part part(contents);
  engine::Engine engine(part.cells, *part.exchange, 1, 64);
  engine.keep_maxima(test_ranks::arrival_depth);
  engine.advance({0.0, 0.0, test_ranks::t_end, 1e-4});  // to another state than that of the start
  for (const int first : {20, 0}) {
    engine.set_state(part_of(expected.states[engine::at(first)], own_cells_of(part.cells)));
    expect_same_steps(contents, expected, part.cells, engine, first);
  }
}

/// The memory of an emulated device is one that any library takes.
TEST_F(MpiExchange, GivesTheSameBitsFromDeviceToDeviceAndThroughTheHost) {
  const cases::Case contents = basin({.sediments = true});
  const test_ranks::Course expected = run_alone(contents, 30);
  for (const bool directly : {false, true}) {
    const ranks::Share share = share_here(contents);
    ranks::MpiExchange exchange(MPI_COMM_WORLD, share.halos, directly);
    engine::Engine engine(share.part, exchange, 1, 64, {.device = engine::Device::emulated});
    engine.keep_maxima(test_ranks::arrival_depth);
    for (const int first : {0, 20}) {
      engine.set_state(part_of(expected.states[engine::at(first)], own_cells_of(share.part)));
      expect_same_steps(contents, expected, share.part, engine, first);
    }
  }
}

TEST_F(MpiExchange, TellsEveryRankWhatAnyWishes) {
  const cases::Case contents = basin({});
  const Part part(contents);
  engine::Engine engine(part.cells, *part.exchange, 1, 64);
  const bool is_last = rank_here() == number_of_ranks() - 1;
  engine.advance({0.0, 0.0, test_ranks::t_end, 1e-4}, {.stop = is_last});
  EXPECT_TRUE(engine.wishes().stop);
  EXPECT_EQ(engine.wishes().pause, HUGE_VAL);
  engine.advance({1e-4, 0.0, test_ranks::t_end, 1e-4}, {.pause = 3.0 + rank_here()});
  EXPECT_FALSE(engine.wishes().stop);
  EXPECT_EQ(engine.wishes().pause, 3.0);
}

TEST_F(MpiExchange, UnitesTheNotesOfAllRanks) {
  const cases::Case contents = basin({.sediments = true});
  engine::Engine alone(contents, 1, 64);
  const Part part(contents);
  engine::Engine engine(part.cells, *part.exchange, 1, 64);
  alone.watch(0.0);
  engine.watch(0.0);
  for (int step = 0; step < 20; ++step) {
    alone.advance({1e-4 * step, 0.0, test_ranks::t_end, 1e-4});
    engine.advance({1e-4 * step, 0.0, test_ranks::t_end, 1e-4});
    const physics::StepNotes &a = engine.notes(), &b = alone.notes();
    EXPECT_EQ(a.limiting_cell, b.limiting_cell);
    EXPECT_EQ(a.speed_squared.value, b.speed_squared.value);
    EXPECT_EQ(a.speed_squared.cell, b.speed_squared.cell);
    EXPECT_EQ(a.speed_squared_per_depth.cell, b.speed_squared_per_depth.cell);
    EXPECT_EQ(a.films, b.films);
  }
}

int main(int argc, char** argv) {
  int provided = MPI_THREAD_SINGLE;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided);
  testing::InitGoogleTest(&argc, argv);
  const int expected_ranks = argc > 1 ? std::atoi(argv[1]) : 0;
  int status = 1;
  if (provided < MPI_THREAD_FUNNELED || number_of_ranks() != expected_ranks) {
    std::fprintf(stderr, "%d ranks with thread support %d, expected %d ranks\n", number_of_ranks(),
                 provided, expected_ranks);
  } else {
    status = RUN_ALL_TESTS();
  }
  int of_all = 1;
  MPI_Allreduce(&status, &of_all, 1, MPI_INT, MPI_MAX, MPI_COMM_WORLD);
  MPI_Finalize();
  return of_all;
}
