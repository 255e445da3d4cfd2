// The tables give the bits of the walk over the cells for the HLL schemes: every cell after every
// step, with every boundary and source term, on any number of threads and for every instruction
// set.
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

#include "case/boundary_kinds.hpp"
#include "engine/device/make_device_backend.hpp"
#include "engine/host/loops.hpp"
#include "fields/HllFlow.hpp"
#include "fields/TablesFlow.hpp"
#include "support/Told.hpp"
#include "support/basin.hpp"
#include "support/device_under_test.hpp"

namespace {

using cases::Scheme;
using support::BasinOptions;

constexpr Scheme both[] = {Scheme::hll1, Scheme::hll2};
constexpr int cells_of_patch = 64;  // so that a small mesh has many

bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

class HllEquality : public testing::Test {
 protected:
  cases::Case basin(Scheme scheme, const BasinOptions& options) {
    cases::Case contents = support::basin(options, folder_);
    contents.scheme = scheme;
    return contents;
  }

  /// Steps both and compares them after each, with the maxima of both; the fewest patches that a
  /// step computed.
  int expect_same(const cases::Case& contents, int threads, int steps, bool watched = false,
                  int patch = cells_of_patch) {
    fields::HllFlow walk(contents);
    fields::TablesFlow tables(contents, told_, threads, patch, {instruction_set_, device_});
    walk.keep_maxima(arrival_depth_);
    tables.keep_maxima(arrival_depth_);
    double t = 0.0, next = 0.8 * walk.stable_step(t);
    EXPECT_EQ(next, 0.8 * tables.stable_step(t));
    if (watched) {
      walk.watch();
      tables.watch();
      expect_same_notes(contents, walk, tables, -1);
    }
    int fewest = static_cast<int>(tables.engine().tables().patches.patches.size());
    for (int step = 0; step < steps && !HasFailure(); ++step) {
      const engine::StepTimes times = {t, 0.0, support::basin_t_end, next};
      t += next;
      const double of_walk = walk.advance(times);
      EXPECT_EQ(of_walk, tables.advance(times)) << "step " << step;
      if (step % 3 == 0) {  // what is noted in between changes nothing
        walk.note_maxima(t);
        tables.note_maxima(t);
      }
      expect_same_cells(contents, walk, tables, step, step % 3 == 0);
      if (watched) expect_same_notes(contents, walk, tables, step);
      fewest = std::min(fewest, tables.engine().active_patches());
      next = 0.8 * of_walk;
    }
    return fewest;
  }

  static void expect_same_cells(const cases::Case& contents, const fields::WholeFlow& walk,
                                const fields::WholeFlow& tables, int step, bool with_maxima) {
    const auto n_cells = cases::at(contents.mesh.n_cells());
    std::vector<double> a(n_cells), b(n_cells);
    for (const fields::FieldInfo& info : fields::field_table) {
      if (fields::is_of_maxima(info) && !with_maxima) continue;
      walk.read(info.field, a);
      tables.read(info.field, b);
      for (std::size_t i = 0; i < n_cells; ++i) {
        if (same_bits(a[i], b[i])) continue;
        ADD_FAILURE() << info.quantity << " of cell " << i << ", step " << step << ": " << a[i]
                      << " and " << b[i];
        return;
      }
    }
  }

  static void expect_same_notes(const cases::Case& contents, const fields::WholeFlow& walk,
                                const fields::WholeFlow& tables, int step) {
    const physics::StepNotes &a = walk.notes(), &b = tables.notes();
    EXPECT_EQ(a.limiting_cell, b.limiting_cell) << "step " << step;
    EXPECT_EQ(a.speed_squared.value, b.speed_squared.value) << "step " << step;
    EXPECT_EQ(a.speed_squared.cell, b.speed_squared.cell) << "step " << step;
    EXPECT_EQ(a.speed_squared_per_depth.value, b.speed_squared_per_depth.value);
    EXPECT_EQ(a.speed_squared_per_depth.cell, b.speed_squared_per_depth.cell);
    EXPECT_EQ(a.not_finite, b.not_finite);
    EXPECT_EQ(a.films, b.films);
    if (step < 0) return;  // nothing has come or gone yet
    for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      const fields::UnseenDepth of_walk = walk.unseen_depth(cell);
      const fields::UnseenDepth of_tables = tables.unseen_depth(cell);
      EXPECT_EQ(of_walk.recovered, of_tables.recovered) << cell;
      EXPECT_EQ(of_walk.taken_discharge, of_tables.taken_discharge) << cell;
    }
    for (int k = 0; k < static_cast<int>(contents.mesh.boundaries.size()); ++k) {
      EXPECT_EQ(walk.boundary_inflow(k).water, tables.boundary_inflow(k).water) << k;
      EXPECT_EQ(walk.boundary_inflow(k).bed, tables.boundary_inflow(k).bed) << k;
    }
  }

  /// With every boundary that there is over sand, and thin layers that run out.
  cases::Case over_sand(const BasinOptions& options) {
    BasinOptions with_sand = options;
    with_sand.sediments = true;
    cases::Case contents = basin(Scheme::hll1, with_sand);
    int k = 0;
    for (cases::Boundary& boundary : contents.mesh.boundaries) {
      if (boundary.code == edge_code::wall && ++k % 3 == 0) {
        boundary = {boundary.edge, edge_code::discharge, k % 2 == 0 ? -0.3 : 0.2, -1};
      } else if (boundary.code == edge_code::wall && k % 3 == 1) {
        boundary.code = edge_code::transmissive;
      }
    }
    for (std::size_t i = 0; i < contents.fields.sediment.size(); i += 3) {
      contents.fields.sediment[i] *= 1e-3;
    }
    return contents;
  }

  support::TemporaryFolder folder_;
  support::Told told_;
  std::optional<std::string> instruction_set_;  ///< without one the best
  engine::Device device_ = engine::Device::none;
  double arrival_depth_ = 0.3;  ///< m; some cells come to it and some go below
};

}  // namespace

TEST_F(HllEquality, HoldsOnAnyNumberOfThreads) {
  for (const Scheme scheme : both) {
    for (const int threads : {1, 2, 3, 7}) expect_same(basin(scheme, {}), threads, 150);
  }
}

TEST_F(HllEquality, HoldsForEveryCombinationOfSources) {
  for (const Scheme scheme : both) {
    for (int k = 0; k < 16; ++k) {
      arrival_depth_ = (k & 2) != 0 ? 0.3 : 0.0;
      expect_same(basin(scheme, {.friction = (k & 1) != 0,
                                 .rain = (k & 2) != 0,
                                 .soils = (k & 4) != 0,
                                 .mostly_dry = (k & 8) != 0}),
                  2, 60);
    }
  }
}

TEST_F(HllEquality, HoldsOnPatchesOfAnySize) {
  for (const int patch : {64, 128, 320, 1024}) {
    expect_same(basin(Scheme::hll2, {}), 2, 60, false, patch);
  }
}

TEST_F(HllEquality, HoldsWithLevelsOfCellsForABed) {
  for (const bool mostly_dry : {false, true}) {
    cases::Case contents = basin(Scheme::hll2, {.mostly_dry = mostly_dry});
    for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      contents.fields.bed.push_back(0.01 * ((cell * 37) % 50));
    }
    expect_same(contents, 2, 80);
  }
}

TEST_F(HllEquality, DryPatchesAreSkippedAndWokenAgain) {
  for (const Scheme scheme : both) {
    const cases::Case contents = basin(scheme, {.rain = false, .soils = false, .mostly_dry = true});
    EXPECT_LT(expect_same(contents, 2, 120), 7);
  }
}

TEST_F(HllEquality, NotesAreTheSameOnBothPaths) {
  for (const bool mostly_dry : {false, true}) {
    for (const int threads : {1, 3}) {
      expect_same(basin(Scheme::hll2, {.mostly_dry = mostly_dry}), threads, 60, true);
    }
  }
}

TEST_F(HllEquality, HoldsOverABedThatMoves) {
  const cases::Case contents = over_sand({});
  fields::HllFlow walk(contents);
  for (int step = 0; step < 60; ++step) walk.advance({0.0, 0.0, support::basin_t_end, 1e-3});
  std::vector<double> sand(contents.fields.sediment.size());
  walk.read(fields::Field::sediment_thickness, sand);
  EXPECT_NE(sand, contents.fields.sediment);
  for (int k = 0; k < 16; ++k) {
    expect_same(over_sand({.friction = (k & 1) == 0,
                           .rain = (k & 2) != 0,
                           .soils = (k & 4) != 0,
                           .mostly_dry = (k & 8) != 0}),
                1 + k % 3, 100, true);
  }
  for (const int patch : {64, 128, 320, 1024}) expect_same(over_sand({}), 2, 60, true, patch);
}

TEST_F(HllEquality, DryPatchesAreSkippedOverABedThatMoves) {
  cases::Case contents =
      basin(Scheme::hll1, {.sediments = true, .rain = false, .soils = false, .mostly_dry = true});
  EXPECT_LT(expect_same(contents, 2, 120, true), 7);
}

TEST_F(HllEquality, HoldsForEveryInstructionSetOfTheMachine) {
  int run = 0;
  for (const char* set : {"baseline", "avx2", "avx512"}) {
    try {
      engine::loops_for(set);
    } catch (const std::runtime_error&) {
      continue;  // this machine does not have it
    }
    instruction_set_ = set;
    for (const Scheme scheme : both) expect_same(basin(scheme, {}), 2, 80, true);
    expect_same(over_sand({}), 2, 80, true);
    ++run;
  }
  EXPECT_GE(run, 1);
}

TEST_F(HllEquality, HoldsOnADevice) {
  device_ = support::device_under_test();
  for (int k = 0; k < 16; ++k) {
    const BasinOptions options = {.friction = (k & 1) != 0,
                                  .rain = (k & 2) != 0,
                                  .soils = (k & 4) != 0,
                                  .mostly_dry = (k & 8) != 0};
    const int threads = 1 + k % 3;
    for (const Scheme scheme : both) expect_same(basin(scheme, options), threads, 30, true);
    expect_same(over_sand(options), threads, 30, true);
  }
}

TEST_F(HllEquality, ADeviceSkipsAndWakesTheSamePatches) {
  for (const Scheme scheme : both) {
    const cases::Case contents = basin(scheme, {.rain = false, .soils = false, .mostly_dry = true});
    device_ = engine::Device::none;
    const int on_host = expect_same(contents, 2, 120);
    device_ = support::device_under_test();
    EXPECT_EQ(expect_same(contents, 2, 120), on_host);
  }
}

TEST_F(HllEquality, ThreadsOfABlockOnADeviceDoNotRace) {
  device_ = engine::Device::watched;
  for (const Scheme scheme : both) {
    expect_same(basin(scheme, {}), 2, 8, true);
    expect_same(basin(scheme, {}), 2, 5, true, engine::device::cells_per_patch(scheme));
  }
  expect_same(over_sand({}), 2, 8, true);
}
