#include "ranks/InProcess.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <numeric>

#include "ranks/RanksInProcess.hpp"

using namespace test_ranks;

TEST_F(RanksInProcess, HearWhatAnyOfThemWishes) {
  const cases::Case contents = basin({});
  const auto shares = shares_of(contents, ranks::cut_along_curve(contents.mesh, 2));
  run_side_by_side(shares, 1, 64, [](int rank, engine::Engine& engine) {
    for (int step = 0; step < 4; ++step) {
      const engine::Wishes own = {.stop = rank == 1 && step == 2, .pause = 10.0 * rank + step};
      engine.advance({1e-4 * step, 0.0, t_end, 1e-4}, own);
      EXPECT_EQ(engine.wishes().stop, step == 2) << rank;
      EXPECT_EQ(engine.wishes().pause, step) << rank;
    }
  });
}

/// In the first of a few steps one cell is not hyperbolic, later another one.
class NotHyperbolicOnRanks : public RanksInProcess {
 protected:
  struct Found {
    int step, rank;
    engine::NotHyperbolic where;
  };

  engine::State state_with(std::size_t cell_not_hyperbolic) {
    engine::Engine alone(contents_, 1, 64);
    alone.keep_maxima(arrival_depth);
    engine::State state = alone.state();
    state.h[cell_not_hyperbolic] = state.eta[cell_not_hyperbolic] = 0.5;
    state.dqs_dh[cell_not_hyperbolic] = 1e3;
    return state;
  }

  std::vector<Found> find_on(const std::vector<std::vector<Number>>& cells) {
    const engine::State first = state_with(200), later = state_with(500);
    const auto shares = shares_of(contents_, cells);
    std::mutex mutex;
    std::vector<Found> all;
    run_side_by_side(shares, 1, 64, [&](int rank, engine::Engine& engine) {
      for (int step = 0; step < 3; ++step) {
        engine.set_state(part_of(step == 0 ? first : later, own_cells_of(shares[at(rank)].part)));
        engine.advance({0.0, 0.0, t_end, 1e-4});
        if (!engine.not_hyperbolic()) continue;
        const std::lock_guard lock(mutex);
        all.push_back({step, rank, *engine.not_hyperbolic()});
      }
    });
    return all;
  }

  const cases::Case contents_ = basin({.sediments = true});
};

TEST_F(NotHyperbolicOnRanks, IsToldOnceByTheRankOfTheCell) {
  std::vector<Number> every_cell(at(contents_.mesh.n_cells()));
  std::iota(every_cell.begin(), every_cell.end(), 0);
  const std::vector<Found> alone = find_on({every_cell});
  ASSERT_EQ(alone.size(), 1U);
  EXPECT_EQ(alone.front().where.place, 200);

  for (const int count : {2, 3, 5}) {
    std::vector<std::vector<Number>> cells(at(count));  // nearly all of them ghosts of others
    for (const Number cell : every_cell) cells[at(cell % count)].push_back(cell);
    for (const auto& cut : {ranks::cut_along_curve(contents_.mesh, count), cells}) {
      const std::vector<Found> found = find_on(cut);
      ASSERT_EQ(found.size(), 1U) << count;
      EXPECT_EQ(found.front().step, 0);
      const std::vector<Number>& owned = cut[at(found.front().rank)];
      EXPECT_TRUE(std::binary_search(owned.begin(), owned.end(), 200));
      EXPECT_EQ(found.front().where.edge, alone.front().where.edge);
      EXPECT_EQ(found.front().where.place, 200);
      EXPECT_EQ(found.front().where.h, alone.front().where.h);
    }
  }
}
