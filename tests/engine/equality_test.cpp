// The tables give the bits of the objects: every cell after every step, with every boundary and
// source term, on any number of threads and for every instruction set that the machine has.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>

#include "interfaces/HydroBCWall.hpp"
#include "model/engine_bridge.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"

namespace {

/// Source terms that outlive the models.
struct Sources {
  RainTerm rain{1, 3, 2};
  GreenAmptTerm loam{1, 3e-5, 0.11, 0.2, 0.45, 0.02, 1e-3};
  HortonTerm clay{2, 1e-4, 1e-5, 20.0, 0.01, 0.0};

  Sources() {
    rain.times = {0.0, 0.7, 1.9};
    rain.intensities = {2e-3, 0.0, 5e-3};
  }
};

struct Options {
  bool friction = true, rain = true, infiltration = true;
};

class Equality : public testing::Test {
 protected:
  /// Wet and dry cells over a rough bed; boundaries of every kind, the same for the same seed.
  std::unique_ptr<SWE> build(const Options& options, unsigned seed = 1) {
    support::Rectangle rectangle{26, 14, 13.0, 7.0};
    rectangle.west = {-33, 0.0, folder_.write("inflow.txt", "3 0 -0.2 1 -0.9 4 0.1")};
    rectangle.east = {-44, 0.0, folder_.write("level.txt", "3 0 0.9 1 1.2 4 0.7")};
    rectangle.south = {-2};
    rectangle.north = {-4, 0.8};
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    auto model = support::build_rectangle<SWE>(
        rectangle, [&](double, double) { return 0.6 * unit(generator); });
    for (const auto& cell : model->cells) add_state_and_sources(*model, *cell, options, generator);
    model->findH0();
    model->calculateCharLengthMin();
    return model;
  }

  void add_state_and_sources(SWE& model, ComputationalCell& cell, const Options& options,
                             std::mt19937& generator) {
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const double level = unit(generator) > -0.3 ? 0.8 + 0.4 * unit(generator) : -1.0;
    const double qx = unit(generator);
    cell.set_hydrodynamic_values(level, qx, unit(generator));
    cell.set_friction(0.02 + 0.01 * unit(generator));
    if (options.friction) {
      model.friction_terms.push_back(std::make_unique<FrictionTerm>(cell.friction));
      cell.add_source_term(model.friction_terms.back().get());
    }
    if (options.rain && cell.id % 3 != 0) cell.add_source_term(&sources_.rain);
    if (!options.infiltration) return;
    if (cell.id % 4 == 1) cell.add_source_term(&sources_.loam);
    if (cell.id % 4 == 2) cell.add_source_term(&sources_.clay);
    if (cell.id % 5 == 0) cell.param.infiltrated_depth = 0.003;
  }

  /// Steps both models side by side and compares them after each.
  void expect_same(const Options& options, int threads, int steps) {
    const support::RunGlobals globals(1e-3, 1.0, 5.0);
    const auto objects = build(options);
    const auto tables = build(options);
    double next = 0.4 * objects->dtMin();
    tables->compile(threads);
    ASSERT_NE(tables->engine, nullptr);
    EXPECT_EQ(tables->engine->tables().threads(), threads);
    for (int step = 0; step < steps; ++step) {
      Globals::dt = next;
      const double of_objects = objects->computeFlowStep();
      const double of_tables = tables->computeFlowStep();
      ASSERT_EQ(of_objects, of_tables) << "step " << step;
      tables->publish();
      for (std::size_t i = 0; i < objects->cells.size(); ++i) {
        ASSERT_TRUE(same_bits(*objects->cells[i], *tables->cells[i]))
            << "cell " << i << ", step " << step;
      }
      next = 0.4 * of_objects;
      Globals::t += next;
    }
    EXPECT_GT(support::volume_of(*objects), 0.0);
  }

  static bool same_bits(const ComputationalCell& a, const ComputationalCell& b) {
    return std::memcmp(&a.U, &b.U, sizeof a.U) == 0 &&
           std::memcmp(&a.max_values, &b.max_values, sizeof a.max_values) == 0 &&
           a.free_surface_level == b.free_surface_level &&
           a.param.infiltrated_depth == b.param.infiltrated_depth;
  }

  support::TemporaryFolder folder_;
  Sources sources_;
};

}  // namespace

TEST_F(Equality, HoldsOnAnyNumberOfThreads) {
  for (const int threads : {1, 2, 3, 7}) expect_same({}, threads, 150);
}

TEST_F(Equality, HoldsForEveryCombinationOfSources) {
  for (int combination = 0; combination < 8; ++combination) {
    expect_same({(combination & 4) != 0, (combination & 2) != 0, (combination & 1) != 0}, 2, 60);
  }
}

TEST_F(Equality, HoldsForEveryInstructionSetOfTheMachine) {
  int run = 0;
  for (const char* set : {"baseline", "avx2", "avx512"}) {
    setenv("QUILLMERE_ISA", set, 1);
    try {
      engine::kernels_of_this_machine();
    } catch (const std::runtime_error&) {
      continue;  // this machine does not have it
    }
    EXPECT_STREQ(engine::kernels_of_this_machine().name, set);
    expect_same({}, 2, 80);
    ++run;
  }
  unsetenv("QUILLMERE_ISA");
  EXPECT_GE(run, 1);
}

TEST_F(Equality, AnUnknownInstructionSetIsRefused) {
  setenv("QUILLMERE_ISA", "abacus", 1);
  EXPECT_THROW(engine::kernels_of_this_machine(), std::runtime_error);
  unsetenv("QUILLMERE_ISA");
}

TEST_F(Equality, ThePathCanBeForced) {
  const support::RunGlobals globals(1e-3);
  const auto model = build({});
  setenv("QUILLMERE_ENGINE", "objects", 1);
  model->compile(1);
  EXPECT_EQ(model->engine, nullptr);
  setenv("QUILLMERE_ENGINE", "tables", 1);
  model->compile(1);
  EXPECT_NE(model->engine, nullptr);
  setenv("QUILLMERE_ENGINE", "fables", 1);
  EXPECT_THROW(model->compile(1), std::runtime_error);
  unsetenv("QUILLMERE_ENGINE");
}

TEST_F(Equality, FrictionOnSomeCellsOnlyRunsOnTheObjects) {
  const support::RunGlobals globals(1e-3);
  const auto model = build({.friction = false});
  FrictionTerm term(0.03);
  model->cells.front()->add_source_term(&term);
  model->compile(1);
  EXPECT_EQ(model->engine, nullptr);
}

TEST_F(Equality, WhatTheTablesDoNotKnowRunsOnTheObjects) {
  struct PaintedWall : HydroBCWall {
    using HydroBCWall::HydroBCWall;
  };
  const support::RunGlobals globals(1e-3);
  const auto model = build({});
  auto& first = model->interfaces.front();
  model->interfaces.push_back(
      std::make_unique<PaintedWall>(first->cell_left, *first->nodes[0], *first->nodes[1]));
  model->compile(1);
  EXPECT_EQ(model->engine, nullptr);
  setenv("QUILLMERE_ENGINE", "tables", 1);
  EXPECT_THROW(model->compile(1), std::runtime_error);
  unsetenv("QUILLMERE_ENGINE");
}
