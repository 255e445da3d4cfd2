// The cells are shared out anew in the middle of a run: not a bit of it may change.
#include <algorithm>
#include <random>

#include "fields/Clock.hpp"
#include "fields/RanksFlow.hpp"
#include "fields/make_flow.hpp"
#include "ranks/Curve.hpp"
#include "ranks/DelayedGroup.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/as_first_of.hpp"
#include "ranks/cuts_by_weight.hpp"
#include "ranks/kept.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"

using namespace test_ranks;

namespace {

/// What can be seen of a run.
struct Seen {
  std::vector<double> steps;
  std::vector<physics::StepNotes> notes;  ///< of every step, of a run that is watched
  std::vector<Kept> kept;                 ///< every ten steps
  std::vector<utils::Bytes> looks;        ///< likewise, with the books of a watched run
};

class Recut : public PartsOfCourse {
 protected:
  static constexpr int steps = 60, steps_between_cuts = 10;

  /// Calls `recut` between two steps, every ten of them.
  template <class Recut>
  static Seen run(fields::Flow& flow, const cases::Case& contents, bool is_watched,
                  const Recut& recut) {
    Seen seen;
    flow.keep_maxima(arrival_depth);
    fields::Clock clock = fields::clock_at_start(contents, flow);
    if (is_watched) flow.watch();
    const auto looks = flow.looks(contents);
    const auto rows = flow.saved_rows();
    for (int step = 0; step < steps; ++step) {
      if (step % steps_between_cuts == 0) {
        seen.kept.push_back(kept_of(*rows, {looks.get(), is_watched}));
        utils::put_into(seen.looks.emplace_back(), looks->water());
        if (is_watched) utils::put_into(seen.looks.emplace_back(), looks->volumes());
        recut();
      }
      const double dt = clock.dt;
      fields::advance(flow, contents, clock);
      if (is_watched) looks->add_step(dt);
      EXPECT_FALSE(clock.has_collapsed());
      seen.steps.push_back(clock.dt);
      if (is_watched) seen.notes.push_back(flow.notes());
    }
    flow.note_maxima(clock.t);
    seen.kept.push_back(kept_of(*rows, {looks.get(), is_watched}));
    return seen;
  }

  /// As bytes; NaN among them.
  template <class Value>
  static utils::Bytes bytes_of(const std::vector<Value>& values) {
    utils::Bytes bytes;
    utils::put_into(bytes, values);
    return bytes;
  }

  static void expect_same(const Seen& seen, const Seen& expected) {
    EXPECT_TRUE(bytes_of(seen.steps) == bytes_of(expected.steps));
    EXPECT_TRUE(bytes_of(seen.notes) == bytes_of(expected.notes));
    EXPECT_TRUE(seen.kept == expected.kept);
    EXPECT_TRUE(seen.looks == expected.looks);
  }

  std::vector<ranks::Cells> random_cut(const cases::Mesh& mesh, int ranks) {
    const ranks::Curve curve(mesh, 4);
    std::vector<double> weights;
    for (int k = 0; k < curve.patches(); ++k) {
      weights.push_back(k % 100 == 0 ? 1.0 + static_cast<double>(random_() % 400) : 1.0);
    }
    return curve.runs(ranks::cuts_of(weights, ranks));
  }

  void expect_the_run_of_one(const cases::Case& contents, const std::vector<int>& counts) {
    for (const bool is_watched : {false, true}) {
      const auto alone = fields::make_flow(contents, told_, {.most_threads = 1});
      const Seen expected = run(*alone, contents, is_watched, [] {});
      ASSERT_FALSE(expected.kept.front() == expected.kept.back());
      for (const int count : counts) {
        as_first_of({count}, [&](ranks::Group& group) {
          fields::RanksFlow flow(contents, told_, {.group = &group, .are_balanced = false}, 1, {});
          const Seen seen = run(flow, contents, is_watched,
                                [&] { flow.recut(random_cut(contents.mesh, count)); });
          SCOPED_TRACE(std::to_string(count) + " ranks, watched: " + std::to_string(is_watched));
          expect_same(seen, expected);
          EXPECT_EQ(flow.recuts(), steps / steps_between_cuts);
        });
      }
    }
  }

  std::mt19937 random_{11};
  support::Told told_;
};

}  // namespace

TEST_F(Recut, LeavesTheRunOfWaterOverSoilsUnderRainAsItIs) {
  expect_the_run_of_one(basin({}), {2, 3, 5, 7});
  expect_the_run_of_one(basin({.mostly_dry = true}), {3, 7});
  expect_the_run_of_one(basin({.rain = false, .soils = false, .mostly_dry = true}), {5});
}

TEST_F(Recut, LeavesTheRunOverSandAsItIs) {
  expect_the_run_of_one(basin({.sediments = true}), {2, 3, 5, 7});
  expect_the_run_of_one(basin({.sediments = true, .mostly_dry = true}), {5});
}

TEST_F(Recut, LeavesTheRunsOfThePositiveSchemesAsTheyAre) {
  for (const bool mostly_dry : {false, true}) {
    cases::Case contents = basin({.mostly_dry = mostly_dry});
    contents.scheme = cases::Scheme::hll2;
    expect_the_run_of_one(contents, {2, 3, 5, 7});
  }
  cases::Case sand = basin({.sediments = true});
  sand.scheme = cases::Scheme::hll1;
  expect_the_run_of_one(sand, {3, 7});
}

TEST_F(Recut, BearsMessagesThatComeLate) {
  const cases::Case contents = basin({});
  const auto alone = fields::make_flow(contents, told_, {.most_threads = 1});
  const Seen expected = run(*alone, contents, true, [] {});
  const OtherRanks others{
      .count = 5, .changed = [](std::unique_ptr<ranks::Group> group) {
        return std::unique_ptr<ranks::Group>(std::make_unique<DelayedGroup>(std::move(group), 3));
      }};
  as_first_of(others, [&](ranks::Group& group) {
    fields::RanksFlow flow(contents, told_, {.group = &group}, 1, {});
    const Seen seen = run(flow, contents, true, [&] { flow.recut(random_cut(contents.mesh, 5)); });
    expect_same(seen, expected);
  });
}

namespace {

/// A basin whose water stands behind a dam that breaks, while most of it is dry.
class DryBasin : public Recut {
 protected:
  static cases::Case dry_basin() {
    const support::RunGlobals globals(1e-3, 1.0, t_end);
    const auto model = support::build_rectangle<SWE>({60, 30, 60.0, 30.0});
    support::fill(*model, [](double x, double) { return x < 6.0 ? 1.0 : -1.0; });
    cases::Case contents = support::case_of(*model);
    contents.cfl = courant;
    return contents;
  }

  static Kept state_after(fields::Flow& flow, const cases::Case& contents, int steps) {
    fields::Clock clock = fields::clock_at_start(contents, flow);
    for (int step = 0; step < steps; ++step) fields::advance(flow, contents, clock);
    return state_of(flow);
  }
  static Kept state_of(const fields::Flow& flow) { return kept_of(*flow.saved_rows(), {}); }
};

}  // namespace

TEST_F(DryBasin, IsSharedOutByItsWaterBeforeTheFirstStep) {
  const cases::Case contents = dry_basin();
  as_first_of({3}, [&](ranks::Group& group) {
    fields::RanksFlow flow(contents, told_, {.group = &group}, 1, {});
    fields::Clock clock = fields::clock_at_start(contents, flow);
    fields::advance(flow, contents, clock);
    EXPECT_EQ(flow.recuts(), 1);
    for (int step = 0; step < 150; ++step) fields::advance(flow, contents, clock);
    EXPECT_EQ(flow.execution_path().recuts, flow.recuts());

    const auto alone = fields::make_flow(contents, told_, {.most_threads = 1});
    EXPECT_TRUE(state_of(flow) == state_after(*alone, contents, static_cast<int>(clock.steps)));
  });
}

TEST_F(DryBasin, StaysAsItIsWhereNobodyBalancesTheRanks) {
  const cases::Case contents = dry_basin();
  as_first_of({3}, [&](ranks::Group& group) {
    fields::RanksFlow flow(contents, told_, {.group = &group, .are_balanced = false}, 1, {});
    fields::Clock clock = fields::clock_at_start(contents, flow);
    for (int step = 0; step < 500; ++step) fields::advance(flow, contents, clock);
    EXPECT_EQ(flow.recuts(), 0);
  });
}

TEST_F(DryBasin, GivesRanksMoreEvenWorkWhereItIsSharedOutByItsWater) {
  const cases::Case contents = dry_basin();
  const auto imbalance_of_cells = [&](bool are_balanced) {
    double imbalance = 0.0;
    as_first_of({3}, [&](ranks::Group& group) {
      fields::RanksFlow flow(contents, told_, {.group = &group, .are_balanced = are_balanced}, 1,
                             {});
      fields::Clock clock = fields::clock_at_start(contents, flow);
      // One look, after so many.
      for (int step = 0; step < 70; ++step) fields::advance(flow, contents, clock);
      imbalance = flow.balance().cells().imbalance();
    });
    return imbalance;
  };
  const double stay = imbalance_of_cells(false), move = imbalance_of_cells(true);
  EXPECT_GT(stay, 1.5);
  EXPECT_LT(move - 1.0, 0.5 * (stay - 1.0));
}
