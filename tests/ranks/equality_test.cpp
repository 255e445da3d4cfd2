// Ranks that compute parts of a case give the bits of one engine, after every step.
#include <gtest/gtest.h>

#include <random>

#include "ranks/DelayedGroup.hpp"
#include "ranks/RanksInProcess.hpp"

using namespace test_ranks;

TEST_F(RanksInProcess, GiveTheSameBitsForWater) {
  expect_same_on_any_number(basin({.friction = false, .rain = false, .soils = false}), 100);
  expect_same_on_any_number(basin({.rain = false, .soils = false}), 60);
}

TEST_F(RanksInProcess, GiveTheSameBitsWithRainAndSoils) {
  expect_same_on_any_number(basin({.soils = false}), 60);
  expect_same_on_any_number(basin({}), 100);
}

TEST_F(RanksInProcess, GiveTheSameBitsWithSediments) {
  expect_same_on_any_number(basin({.sediments = true}), 100);
}

TEST_F(RanksInProcess, GiveTheSameBitsWhereMostOfTheMeshIsDry) {
  for (const bool sediments : {false, true}) {
    expect_same_on_any_number(basin({.sediments = sediments, .mostly_dry = true}), 100);
    expect_same_on_any_number(
        basin({.sediments = sediments, .rain = false, .soils = false, .mostly_dry = true}), 100);
  }
}

TEST_F(RanksInProcess, GiveTheSameBitsWithTheSchemesThatLookTwoCellsFar) {
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    for (const bool mostly_dry : {false, true}) {
      cases::Case contents = basin({.mostly_dry = mostly_dry});
      contents.scheme = scheme;
      expect_same_on_any_number(contents, 60);
    }
  }
}

TEST_F(RanksInProcess, GiveTheSameBitsOverABedFromAFile) {
  for (const cases::Scheme scheme :
       {cases::Scheme::lhllc, cases::Scheme::hll1, cases::Scheme::hll2}) {
    cases::Case contents = basin({});
    contents.scheme = scheme;
    for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      contents.fields.bed.push_back(0.05 * (cell % 11));
    }
    expect_same_on_any_number(contents, 40);
  }
}

TEST_F(RanksInProcess, GiveTheSameBitsWithThePositiveSchemeOverABedThatMoves) {
  for (const bool mostly_dry : {false, true}) {
    cases::Case contents = basin({.sediments = true, .mostly_dry = mostly_dry});
    contents.scheme = cases::Scheme::hll1;
    expect_same_on_any_number(contents, 100);
  }
}

TEST_F(RanksInProcess, SkipDryPatches) {
  const cases::Case contents = basin({.rain = false, .soils = false, .mostly_dry = true});
  const Course expected = run_alone(contents, 20);
  const Work work = expect_same(contents, expected,
                                shares_of(contents, ranks::cut_along_curve(contents.mesh, 3)));
  EXPECT_GT(work.computed, 0);
  EXPECT_LT(work.computed, work.patches * 3 / 4);
}

TEST_F(RanksInProcess, GiveTheSameBitsWithPatchesOfAnySizeOnAnyNumberOfThreads) {
  for (const bool sediments : {false, true}) {
    const cases::Case contents = basin({.sediments = sediments});
    const Course expected = run_alone(contents, 30);
    const auto shares = shares_of(contents, ranks::cut_along_curve(contents.mesh, 2));
    for (const int cells_per_patch : {0, 64, 128}) {
      for (const int threads : {1, 2, 3}) {
        expect_same(contents, expected, shares, threads, cells_per_patch);
      }
    }
  }
}

TEST_F(RanksInProcess, GiveTheSameBitsWhereverTheirCellsAre) {
  for (const bool sediments : {false, true}) {
    const cases::Case contents = basin({.sediments = sediments});
    const Course expected = run_alone(contents, 30);
    std::mt19937 generator(1);
    // Two ranks of many cells here and there, and one of few.
    std::discrete_distribution<std::size_t> owner({10.0, 10.0, 1.0});
    std::vector<std::vector<Number>> cells(3);
    for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      cells[owner(generator)].push_back(cell);
    }
    expect_same(contents, expected, shares_of(contents, cells));
  }
}

TEST_F(RanksInProcess, GiveTheSameBitsHoweverLateTheirMessagesCome) {
  for (const cases::Scheme scheme : {cases::Scheme::lhllc, cases::Scheme::hll2}) {
    cases::Case contents = basin({});
    contents.scheme = scheme;
    const Course expected = run_alone(contents, 20);
    for (const int count : {2, 3, 5, 7}) {
      const auto shares = shares_of(contents, uneven_parts(contents.mesh, count));
      ranks::InProcess job(count);
      std::vector<std::thread> members;
      for (int rank = 0; rank < count; ++rank) {
        members.emplace_back([&, rank] {
          DelayedExchange exchange(job.group(rank)->exchange(shares[at(rank)].halos),
                                   static_cast<unsigned>(17 * count + rank));
          engine::Engine engine(shares[at(rank)].part, exchange, 1, 64);
          engine.keep_maxima(arrival_depth);
          expect_same_steps(contents, expected, shares[at(rank)].part, engine, 0);
        });
      }
      for (std::thread& member : members) member.join();
    }
  }
}

TEST_F(RanksInProcess, GiveTheSameBitsWithTwoRingsOfGhosts) {
  const cases::Case contents = basin({});
  const auto cells = ranks::cut_along_curve(contents.mesh, 3);
  expect_same(contents, run_alone(contents, 30), shares_of(contents, cells, 2));
}

TEST_F(RanksInProcess, GoOnFromAnyState) {
  for (const int k : {0, 1, 2}) {
    cases::Case contents = basin({.sediments = k > 0});
    if (k == 2) contents.scheme = cases::Scheme::hll1;
    const Course expected = run_alone(contents, 40);
    const auto shares = shares_of(contents, ranks::cut_along_curve(contents.mesh, 3));
    for (const int first : {0, 25}) {
      run_side_by_side(shares, 1, 64, [&](int rank, engine::Engine& engine) {
        const cases::Part& part = shares[at(rank)].part;
        engine.advance({0.0, 0.0, t_end, 1e-4});  // to another state than that of the start
        engine.set_state(part_of(expected.states[at(first)], own_cells_of(part)));
        expect_same_steps(contents, expected, part, engine, first);
      });
    }
  }
}

TEST_F(RanksInProcess, TakeTheFreeSurfaceThatAStateGives) {
  const cases::Case contents = basin({});
  engine::Engine alone(contents, 1, 64);
  alone.keep_maxima(arrival_depth);
  engine::State given = alone.state();
  for (std::size_t cell = 0; cell < given.eta.size(); ++cell) {
    given.eta[cell] += 1e-3 * static_cast<double>(cell % 7);
  }
  alone.set_state(given);
  alone.advance({0.0, 0.0, t_end, 1e-3});
  const engine::State expected = alone.state();

  const auto shares = shares_of(contents, ranks::cut_along_curve(contents.mesh, 3));
  run_side_by_side(shares, 1, 64, [&](int rank, engine::Engine& engine) {
    const std::vector<Number> owned = own_cells_of(shares[at(rank)].part);
    engine.set_state(part_of(given, owned));
    engine.advance({0.0, 0.0, t_end, 1e-3});
    EXPECT_TRUE(have_same_bits(engine.state(), part_of(expected, owned))) << rank;
  });
}
