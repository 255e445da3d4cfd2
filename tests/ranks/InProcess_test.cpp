#include "ranks/InProcess.hpp"

#include <gtest/gtest.h>

#include "ranks/RanksInProcess.hpp"

using namespace test_ranks;

TEST_F(RanksInProcess, HearWhatAnyOfThemWishes) {
  const cases::Case contents = basin({});
  const auto subsets = subsets_of(contents.mesh, ranks::cut_along_curve(contents.mesh, 2));
  run_side_by_side(contents, subsets, 1, 64, [](int rank, engine::Engine& engine) {
    for (int step = 0; step < 4; ++step) {
      const engine::Wishes own = {.stop = rank == 1 && step == 2,
                                  .checkpoint = rank == 0 && step == 1};
      engine.advance({1e-4 * step, 0.0, t_end, 1e-4}, own);
      EXPECT_EQ(engine.wishes().stop, step == 2) << rank;
      EXPECT_EQ(engine.wishes().checkpoint, step == 1) << rank;
    }
  });
}

TEST_F(RanksInProcess, OneOfThemTellsOnceWhereTheSystemIsNotHyperbolic) {
  const cases::Case contents = basin({.sediments = true});
  engine::Engine alone(contents, 1, 64);
  engine::State state = alone.state();
  for (const std::size_t cell : {200, 500}) {
    state.h[cell] = state.eta[cell] = 0.5;
    state.dqs_dh[cell] = 1e3;
  }
  alone.set_state(state);
  alone.advance({0.0, 0.0, t_end, 1e-4});
  const auto expected = alone.not_hyperbolic();
  ASSERT_TRUE(expected.has_value());
  EXPECT_EQ(expected->place, 200);

  for (const int count : {2, 3, 5}) {
    const auto subsets = subsets_of(contents.mesh, ranks::cut_along_curve(contents.mesh, count));
    std::atomic<int> told = 0;
    run_side_by_side(contents, subsets, 1, 64, [&](int rank, engine::Engine& engine) {
      for (int step = 0; step < 3; ++step) {
        engine.set_state(part_of(state, subsets[at(rank)].owned));
        engine.advance({0.0, 0.0, t_end, 1e-4});
        const auto& found = engine.not_hyperbolic();
        if (!found) continue;
        ++told;
        EXPECT_EQ(step, 0);
        EXPECT_EQ(found->edge, expected->edge);
        EXPECT_EQ(found->place, expected->place);
        EXPECT_EQ(found->h, expected->h);
      }
    });
    EXPECT_EQ(told, 1) << count;
  }
}
