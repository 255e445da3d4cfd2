// The tables give the bits of the objects: every cell after every step, with every boundary and
// source term, on any number of threads and for every instruction set that the machine has.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>

#include "engine/host/loops.hpp"
#include "fields/CompiledFlow.hpp"
#include "fields/ObjectsFlow.hpp"
#include "fields/make_flow.hpp"
#include "globals/edge_codes.hpp"
#include "interfaces/HydroBCWall.hpp"
#include "model/CellSWE_Exner.hpp"
#include "model/SWE_Exner.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/SedimentParameters.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/flow.hpp"

namespace {

/// Source terms that outlive the models.
struct Sources {
  RainTerm rain{1, 3, 2}, drizzle{2, 2, 1};
  GreenAmptTerm loam{1, 3e-5, 0.11, 0.2, 0.45, 0.02, 1e-3};
  HortonTerm clay{2, 1e-4, 1e-5, 20.0, 0.01, 0.0};

  Sources() {
    rain.times = {0.0, 0.7, 1.9};
    rain.intensities = {2e-3, 0.0, 5e-3};
    drizzle.times = {0.0, 1.1};
    drizzle.intensities = {1e-5, 3e-4};
  }
};

enum class Water { everywhere, in_the_west };

struct Options {
  bool friction = true, rain = true, infiltration = true;
  Water water = Water::everywhere;
  double recovery = 1e-3;  ///< of one of the soils, 1/s
  bool films = true;       ///< on cells without water
  bool watched = false;    ///< with notes for a report
};

constexpr int cells_per_patch = 64;  // so that a small mesh has many

class Equality : public testing::Test {
 protected:
  /// Wet and dry cells over a rough bed; boundaries of every kind, the same for the same seed.
  template <class Model>
  std::unique_ptr<Model> build(const Options& options, unsigned seed = 1) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    auto model = support::build_rectangle<Model>(
        rectangle<Model>(options), [&](double, double) { return 0.6 * unit(generator); });
    sources_.loam = GreenAmptTerm(1, 3e-5, 0.11, 0.2, 0.45, 0.02, options.recovery);
    for (const auto& cell : model->cells) {
      add_state(*cell, options, generator);
      add_sources(*model, *cell, options, generator);
    }
    model->findH0();
    model->calculateCharLengthMin();
    return model;
  }

  template <class Model>
  support::Rectangle rectangle(const Options& options) {
    constexpr bool has_series = std::is_same_v<Model, SWE>;
    support::Rectangle result{26, 14, 13.0, 7.0};
    result.west = {-33, 0.0, folder_.write("inflow.txt", "3 0 -0.2 1 -0.9 4 0.1")};
    result.east = {-44, 0.0, folder_.write("level.txt", "3 0 0.9 1 1.2 4 0.7")};
    result.south = {-2};
    result.north = {-4, 0.8};
    if (!has_series) {
      result.west = {-3, -0.4};
      result.east = {-5};
    }
    if (options.water == Water::in_the_west) result.east = result.north = {-5};
    return result;
  }

  static void add_state(ComputationalCell& cell, const Options& options, std::mt19937& generator) {
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const bool is_sand = unit(generator) > -0.5;
    if (exner(cell) && is_sand) cell.set_hs(0.05 + 0.04 * unit(generator));
    const bool is_wet =
        options.water == Water::everywhere ? unit(generator) > -0.3 : cell.center.x < 1.0;
    const double level = is_wet ? 0.8 + 0.4 * unit(generator) : -1.0;
    const double qx = unit(generator);
    cell.set_hydrodynamic_values(level, qx, unit(generator));
    // Films below the threshold and exactly at it: the latter keep their discharge.
    if (options.films && !is_wet && cell.id % 7 == 0) cell.U.h = 0.4 * Constants::ZERO_DEPTH;
    if (options.films && !is_wet && cell.id % 7 == 1)
      cell.U.set_values(Constants::ZERO_DEPTH, 0.01, -0.02);
  }

  static bool exner(const ComputationalCell& cell) {
    return dynamic_cast<const CellSWE_Exner*>(&cell) != nullptr;
  }

  void add_sources(PhysicalModel& model, ComputationalCell& cell, const Options& options,
                   std::mt19937& generator) {
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    if (options.friction) {
      cell.set_friction(0.02 + 0.01 * unit(generator));
      cell.add_source_term(&model.friction_terms.emplace_back(cell.friction));
    }
    if (options.rain && cell.id % 3 != 0) cell.add_source_term(&sources_.rain);
    if (options.rain && cell.id % 3 == 0) cell.add_source_term(&sources_.drizzle);
    if (!options.infiltration) return;
    if (cell.id % 4 == 1) cell.add_source_term(&sources_.loam);
    if (cell.id % 4 == 2) cell.add_source_term(&sources_.clay);
    if (cell.id % 5 == 0) cell.param.infiltrated_depth = 0.003;
  }

  /// Steps both models side by side and compares them after each; the fewest patches that a step
  /// computed, and how many there are.
  struct Work {
    int fewest_patches, patches;
  };
  template <class Model>
  Work expect_same(const Options& options, int threads, int steps) {
    const support::RunGlobals globals(1e-3, 1.0, 5.0);
    const support::SedimentParameters sediment(0.8e-3, 2.65, 0.42);
    const auto objects = build<Model>(options);
    const auto compiled = build<Model>(options);
    fields::ObjectsFlow reference(*objects);
    const auto flow = fields::make_flow(*compiled, threads, cells_per_patch);
    if (options.watched) {
      reference.watch();
      flow->watch();
    }
    const auto* const tables = dynamic_cast<const fields::CompiledFlow*>(flow.get());
    if (tables == nullptr) {
      ADD_FAILURE() << "the tables were refused";
      return {};
    }
    const engine::Engine& engine = tables->tables();
    EXPECT_EQ(engine.threads(), threads);
    Work work = {engine.patches(), engine.patches()};
    double next = 0.4 * reference.stable_step();
    for (int step = 0; step < steps; ++step) {
      const fields::StepTimes times = support::step_times(next);
      const double of_objects = reference.advance(times);
      const double of_tables = flow->advance(times);
      EXPECT_EQ(of_objects, of_tables) << "step " << step;
      if (!expect_same_states(reference, *flow, compiled->n_cells, step)) return work;
      if (options.watched) expect_same_notes(*objects, reference, *flow, step);
      work.fewest_patches = std::min(work.fewest_patches, engine.active_patches());
      next = 0.4 * of_objects;
      Globals::t += next;
    }
    EXPECT_GT(support::volume_of(*objects), 0.0);
    return work;
  }

  /// The same bits in every cell; false if not.
  static bool expect_same_states(const fields::Flow& a, const fields::Flow& b, int n_cells,
                                 int step) {
    for (cases::Number cell = 0; cell < n_cells; ++cell) {
      const fields::CellState of_a = a.state(cell), of_b = b.state(cell);
      if (std::memcmp(&of_a, &of_b, sizeof of_a) == 0) continue;
      ADD_FAILURE() << "cell " << cell << ", step " << step;
      return false;
    }
    std::vector<double> of_a(static_cast<std::size_t>(n_cells)), of_b = of_a;
    for (const fields::FieldInfo& info : fields::field_table) {
      a.read(info.field, of_a);
      b.read(info.field, of_b);
      if (std::memcmp(of_a.data(), of_b.data(), of_a.size() * sizeof(double)) == 0) continue;
      ADD_FAILURE() << info.quantity << ", step " << step;
      return false;
    }
    return true;
  }

  static void expect_same_notes(const PhysicalModel& model, const fields::Flow& objects,
                                const fields::Flow& tables, int step) {
    const physics::StepNotes& a = objects.notes();
    const physics::StepNotes& b = tables.notes();
    EXPECT_EQ(a.limiting_cell, b.limiting_cell) << "step " << step;
    EXPECT_EQ(a.speed_squared.value, b.speed_squared.value) << "step " << step;
    EXPECT_EQ(a.speed_squared.cell, b.speed_squared.cell) << "step " << step;
    EXPECT_EQ(a.speed_squared_per_depth.value, b.speed_squared_per_depth.value);
    EXPECT_EQ(a.speed_squared_per_depth.cell, b.speed_squared_per_depth.cell);
    EXPECT_EQ(a.not_finite, b.not_finite);
    for (cases::Number cell = 0; cell < model.n_cells; ++cell) {
      const fields::UnseenDepth of_objects = objects.unseen_depth(cell);
      const fields::UnseenDepth of_tables = tables.unseen_depth(cell);
      EXPECT_EQ(of_objects.recovered, of_tables.recovered) << "cell " << cell;
      EXPECT_EQ(of_objects.lifted, of_tables.lifted) << "cell " << cell;
    }
    int boundary = 0;
    for (const auto& edge : model.interfaces) {
      if (edge->cell_right != nullptr) continue;
      const fields::BoundaryInflow of_objects = objects.boundary_inflow(boundary);
      const fields::BoundaryInflow of_tables = tables.boundary_inflow(boundary);
      EXPECT_EQ(of_objects.water, of_tables.water) << "edge " << edge->tag << ", step " << step;
      EXPECT_EQ(of_objects.bed, of_tables.bed) << "edge " << edge->tag << ", step " << step;
      ++boundary;
    }
    EXPECT_GT(boundary, 0);
  }

  /// Whether a model runs on the tables.
  static bool is_compiled(PhysicalModel& model, int threads = 1) {
    return dynamic_cast<fields::CompiledFlow*>(fields::make_flow(model, threads).get()) != nullptr;
  }

  template <class Model>
  void expect_same_for_every_instruction_set() {
    int run = 0;
    for (const char* set : {"baseline", "avx2", "avx512"}) {
      setenv("QUILLMERE_ISA", set, 1);
      try {
        engine::loops_of_this_machine();
      } catch (const std::runtime_error&) {
        continue;  // this machine does not have it
      }
      EXPECT_STREQ(engine::loops_of_this_machine().instruction_set, set);
      expect_same<Model>({}, 2, 80);
      expect_same<Model>({.watched = true}, 2, 20);
      ++run;
    }
    unsetenv("QUILLMERE_ISA");
    EXPECT_GE(run, 1);
  }

  template <class Model>
  void expect_same_for_every_combination_of_sources(Water water) {
    for (int combination = 0; combination < 8; ++combination) {
      expect_same<Model>(
          {(combination & 4) != 0, (combination & 2) != 0, (combination & 1) != 0, water}, 2, 60);
    }
  }

  support::TemporaryFolder folder_;
  Sources sources_;
};

}  // namespace

TEST_F(Equality, HoldsOnAnyNumberOfThreads) {
  for (const int threads : {1, 2, 3, 7}) {
    expect_same<SWE>({}, threads, 150);
    expect_same<SWE_Exner>({}, threads, 150);
  }
}

TEST_F(Equality, HoldsForEveryCombinationOfSources) {
  expect_same_for_every_combination_of_sources<SWE>(Water::everywhere);
  expect_same_for_every_combination_of_sources<SWE_Exner>(Water::everywhere);
}

TEST_F(Equality, HoldsWhereMostOfTheMeshIsDry) {
  expect_same_for_every_combination_of_sources<SWE>(Water::in_the_west);
  expect_same_for_every_combination_of_sources<SWE_Exner>(Water::in_the_west);
}

TEST_F(Equality, DryPatchesAreSkipped) {
  const Options still{true, false, false, Water::in_the_west};
  const Work water = expect_same<SWE>(still, 2, 40);
  EXPECT_LT(water.fewest_patches, water.patches * 3 / 4);
  const Work bed = expect_same<SWE_Exner>(still, 2, 40);
  EXPECT_LT(bed.fewest_patches, bed.patches * 3 / 4);
}

TEST_F(Equality, DryPatchesAreSkippedBetweenBurstsOfRain) {
  const Work work = expect_same<SWE>({true, true, false, Water::in_the_west}, 2, 10);
  EXPECT_LT(work.fewest_patches, work.patches);
}

TEST_F(Equality, SoilWithoutAFilmIsSkippedUnlessItRecovers) {
  const Work drained = expect_same<SWE>({true, false, true, Water::in_the_west, 0.0, false}, 2, 40);
  EXPECT_LT(drained.fewest_patches, drained.patches);
  const Work recovering =
      expect_same<SWE>({true, false, true, Water::in_the_west, 1e-3, false}, 2, 40);
  EXPECT_EQ(recovering.fewest_patches, recovering.patches);
}

TEST_F(Equality, NotesAreTheSameOnBothPaths) {
  for (const Water water : {Water::everywhere, Water::in_the_west}) {
    for (const int threads : {1, 2, 3}) {
      expect_same<SWE>({.water = water, .watched = true}, threads, 60);
      expect_same<SWE_Exner>({.water = water, .watched = true}, threads, 60);
    }
  }
}

TEST_F(Equality, NotesOfCellsThatAreAlikeNameTheSameOne) {
  const support::RunGlobals globals(1e-3);
  // Still water of one depth: every cell sets the step. Then a symmetric wave.
  for (const double wave : {0.0, 0.5}) {
    const auto build = [&] {
      auto model = support::build_rectangle<SWE>({26, 14, 26.0, 14.0});
      support::fill(*model,
                    [&](double x, double) { return x > 6.0 && x < 20.0 ? 1.0 + wave : 1.0; });
      return model;
    };
    const auto objects = build(), compiled = build();
    fields::ObjectsFlow reference(*objects);
    const auto tables = fields::make_flow(*compiled, 2, cells_per_patch);
    reference.watch();
    tables->watch();
    const int first = reference.notes().limiting_cell;
    ASSERT_GE(first, 0);
    EXPECT_EQ(objects->cells[static_cast<std::size_t>(first)]->U.h, 1.0 + wave);
    double next = 0.4 * reference.stable_step();
    for (int step = 0; step < 20; ++step) {
      const fields::StepTimes times = support::step_times(next);
      next = 0.4 * reference.advance(times);
      tables->advance(times);
      expect_same_notes(*objects, reference, *tables, step);
    }
  }
}

TEST_F(Equality, HoldsForEveryInstructionSetOfTheMachine) {
  expect_same_for_every_instruction_set<SWE>();
  expect_same_for_every_instruction_set<SWE_Exner>();
}

TEST_F(Equality, TheTablesTakeAtMost250BytesPerCell) {
  const support::RunGlobals globals(1e-3);
  const auto model = support::build_rectangle<SWE>({200, 100, 200.0, 100.0});
  support::fill(*model, [](double, double) { return 1.0; });
  for (const auto& cell : model->cells) {
    cell->set_friction(0.03);
    cell->add_source_term(&model->friction_terms.emplace_back(0.03));
  }
  const auto flow = fields::make_flow(*model, 2);
  const auto* const tables = dynamic_cast<const fields::CompiledFlow*>(flow.get());
  ASSERT_NE(tables, nullptr);
  flow->advance(support::step_times(1e-3));
  const double per_cell = static_cast<double>(tables->tables().bytes()) / model->n_cells;
  EXPECT_LE(per_cell, 250.0);
  EXPECT_GE(per_cell, 150.0);  // the columns that no run can do without
  RecordProperty("bytes_per_cell", std::to_string(per_cell));
}

TEST_F(Equality, AnUnknownInstructionSetIsRefused) {
  setenv("QUILLMERE_ISA", "abacus", 1);
  EXPECT_THROW(engine::loops_of_this_machine(), std::runtime_error);
  unsetenv("QUILLMERE_ISA");
}

TEST_F(Equality, ThePathCanBeForced) {
  const support::RunGlobals globals(1e-3);
  const auto model = build<SWE>({});
  setenv("QUILLMERE_ENGINE", "objects", 1);
  EXPECT_FALSE(is_compiled(*model));
  setenv("QUILLMERE_ENGINE", "tables", 1);
  EXPECT_TRUE(is_compiled(*model));
  setenv("QUILLMERE_ENGINE", "fables", 1);
  EXPECT_THROW(is_compiled(*model), std::runtime_error);
  unsetenv("QUILLMERE_ENGINE");
}

TEST_F(Equality, FrictionOnSomeCellsOnlyRunsOnTheObjects) {
  const support::RunGlobals globals(1e-3);
  const auto model = build<SWE>({.friction = false});
  FrictionTerm term(0.03);
  model->cells.front()->add_source_term(&term);
  EXPECT_FALSE(is_compiled(*model));
}

TEST_F(Equality, WhatTheTablesDoNotKnowRunsOnTheObjects) {
  struct PaintedWall : HydroBCWall {
    using HydroBCWall::HydroBCWall;
  };
  const support::RunGlobals globals(1e-3);
  const auto model = build<SWE>({});
  auto& first = model->interfaces.front();
  model->interfaces.push_back(
      std::make_unique<PaintedWall>(first->cell_left, *first->nodes[0], *first->nodes[1]));
  EXPECT_FALSE(is_compiled(*model));
  setenv("QUILLMERE_ENGINE", "tables", 1);
  EXPECT_THROW(is_compiled(*model), std::runtime_error);
  unsetenv("QUILLMERE_ENGINE");
}

TEST_F(Equality, ACellOfMoreEdgesThanTheTablesNumberRunsOnTheObjects) {
  const support::RunGlobals globals(1e-3);
  const auto polygon = [](int sides) {
    auto model = std::make_unique<SWE>();
    std::vector<const MeshNode*> vertices;
    model->mesh_nodes.reserve(static_cast<std::size_t>(sides));
    for (int i = 0; i < sides; ++i) {
      const double angle = 2.0 * 3.141592653589793 * i / sides;
      model->mesh_nodes.emplace_back(std::cos(angle), std::sin(angle), 0.0);
      vertices.push_back(&model->mesh_nodes.back());
    }
    model->build_cell(0, vertices);
    model->n_cells = 1;
    for (int i = 0; i < sides; ++i) {
      model->build_interface(
          edge_code::scheme_lhllc, i, 0, -1, *vertices[static_cast<std::size_t>(i)],
          *vertices[static_cast<std::size_t>((i + 1) % sides)], edge_code::wall, 0.0, "");
    }
    model->findH0();
    model->calculateCharLengthMin();
    return model;
  };
  EXPECT_TRUE(is_compiled(*polygon(65000)));
  EXPECT_FALSE(is_compiled(*polygon(66000)));
}

TEST_F(Equality, ABedThatIsRoughWhereItsFlowIsNotRunsOnTheObjects) {
  const support::RunGlobals globals(1e-3);
  const auto model = build<SWE_Exner>({});
  model->cells.front()->set_friction(0.5);
  EXPECT_FALSE(is_compiled(*model));
}

/// Steps a model of which two cells, in patches of their own, are not hyperbolic.
class NotHyperbolic : public Equality {
 protected:
  [[noreturn]] void step_and_exit(bool on_tables) {
    const support::RunGlobals globals(1e-3, 1e-4, 5.0);
    const support::SedimentParameters sediment(0.8e-3, 2.65, 0.42);
    const auto model = build<SWE_Exner>({});
    for (const std::size_t i : {200, 500}) model->cells[i]->dqs_dh = 1e3;
    std::unique_ptr<fields::Flow> flow = std::make_unique<fields::ObjectsFlow>(*model);
    if (on_tables) flow = fields::make_flow(*model, 2, cells_per_patch);
    if (flow->execution_path().name != std::string(on_tables ? "tables" : "objects")) std::exit(2);
    flow->advance(support::step_times(Globals::dt));
    std::exit(0);
  }
};

TEST_F(NotHyperbolic, BothPathsWarnOfTheFirstCell) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const char* const of_first_cell = "in cell 200 .counted from 0. at t = 0 s";
  EXPECT_EXIT(step_and_exit(false), testing::ExitedWithCode(0), of_first_cell);
  EXPECT_EXIT(step_and_exit(true), testing::ExitedWithCode(0), of_first_cell);
}
