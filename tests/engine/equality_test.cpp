// The tables give the bits of the objects: every cell after every step, with every boundary and
// source term, on any number of threads and for every instruction set that the machine has.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>

#include "case/boundary_kinds.hpp"
#include "engine/device/make_device_backend.hpp"
#include "engine/host/loops.hpp"
#include "fields/ObjectsFlow.hpp"
#include "fields/TablesFlow.hpp"
#include "model/CellSWE_Exner.hpp"
#include "model/SWE_Exner.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/SedimentParameters.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/Told.hpp"
#include "support/case_of.hpp"
#include "support/device_under_test.hpp"

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

constexpr int cells_per_patch = 64;  // so that a small mesh has many

struct Options {
  bool friction = true, rain = true, infiltration = true;
  Water water = Water::everywhere;
  double recovery = 1e-3;  ///< of one of the soils, 1/s
  bool films = true;       ///< on cells without water
  bool watched = false;    ///< with notes for a report
  int per_patch = cells_per_patch;
};

constexpr double t_end = 5.0;  // s

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

  /// Steps a model and the tables of its case side by side and compares them after each; the fewest
  /// patches that a step computed, and how many there are.
  struct Work {
    int fewest_patches, patches;
  };
  template <class Model>
  Work expect_same(const Options& options, int threads, int steps) {
    const support::RunGlobals globals(1e-3, 1.0, t_end);
    const support::SedimentParameters sediment(0.8e-3, 2.65, 0.42);
    const auto model = build<Model>(options);
    const cases::Case contents = support::case_of(*model);
    fields::ObjectsFlow objects(*model);
    fields::TablesFlow tables(contents, told_, threads, options.per_patch, processor_);
    const auto& set = processor_.instruction_set;
    EXPECT_TRUE(!set || tables.execution_path().instruction_set == *set);
    tables.engine().set_state(support::state_of(*model, contents));
    return expect_same_steps(objects, *model, tables, options.watched, steps);
  }

  Work expect_same_steps(fields::ObjectsFlow& objects, const PhysicalModel& model,
                         fields::TablesFlow& tables, bool watched, int steps) {
    const engine::Engine& engine = tables.engine();
    const int patches = static_cast<int>(engine.tables().patches.patches.size());
    Work work = {patches, patches};
    objects.keep_maxima(arrival_depth_);
    tables.keep_maxima(arrival_depth_);
    double t = 0.0, next = 0.4 * objects.stable_step(t);
    EXPECT_EQ(next, 0.4 * tables.stable_step(t));
    if (watched) {
      objects.watch();
      tables.watch();
      expect_same_notes(model, objects, tables, -1);
    }
    for (int step = 0; step < steps; ++step) {
      const double of_objects = objects.advance({t, 0.0, t_end, next});
      const double of_tables = tables.advance({t, 0.0, t_end, next});
      EXPECT_EQ(of_objects, of_tables) << "step " << step;
      if (!have_same_bits(model, tables, step)) return work;
      if (watched) expect_same_notes(model, objects, tables, step);
      work.fewest_patches = std::min(work.fewest_patches, engine.active_patches());
      next = 0.4 * of_objects;
      t += next;
      if (step % 3 == 0) expect_same_maxima(model, objects, tables, t);
    }
    expect_same_maxima(model, objects, tables, t);
    EXPECT_GT(support::volume_of(model), 0.0);
    return work;
  }

  static void expect_same_maxima(const PhysicalModel& model, fields::WholeFlow& objects,
                                 fields::WholeFlow& tables, double t) {
    objects.note_maxima(t);
    tables.note_maxima(t);
    std::vector<double> a(model.cells.size()), b(model.cells.size());
    for (const fields::FieldInfo& info : fields::field_table) {
      if (!fields::is_of_maxima(info)) continue;
      objects.read(info.field, a);
      tables.read(info.field, b);
      EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(double)), 0) << info.quantity;
    }
  }

  static bool have_same_bits(const PhysicalModel& model, fields::TablesFlow& tables, int step) {
    const engine::State state = tables.engine().state();
    for (std::size_t i = 0; i < model.cells.size(); ++i) {
      if (has_same_bits(*model.cells[i], state, i) &&
          has_same_levels(*model.cells[i], tables.state(static_cast<cases::Number>(i)))) {
        continue;
      }
      ADD_FAILURE() << "cell " << i << ", step " << step;
      return false;
    }
    return true;
  }

  static bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

  static bool has_same_bits(const ComputationalCell& cell, const engine::State& state,
                            std::size_t i) {
    const auto same = [&](double value, const std::vector<double>& column) {
      return column.empty() || same_bits(value, column[i]);
    };
    return same(cell.U.h, state.h) && same(cell.U.qx, state.qx) && same(cell.U.qy, state.qy) &&
           same(cell.U.hs, state.hs) && same(cell.U.qsx, state.qsx) &&
           same(cell.U.qsy, state.qsy) && same(cell.dqs_dh, state.dqs_dh) &&
           same(cell.max_values.h, state.max_h) &&
           same(cell.param.infiltrated_depth, state.infiltrated);
  }

  static bool has_same_levels(const ComputationalCell& cell, const fields::CellState& state) {
    return cell.free_surface_level == state.water_level && cell.bed_level == state.bed_level;
  }

  static void expect_same_notes(const PhysicalModel& model, const fields::WholeFlow& objects,
                                const fields::WholeFlow& tables, int step) {
    const physics::StepNotes& a = objects.notes();
    const physics::StepNotes& b = tables.notes();
    EXPECT_EQ(a.limiting_cell, b.limiting_cell) << "step " << step;
    EXPECT_EQ(a.speed_squared.value, b.speed_squared.value) << "step " << step;
    EXPECT_EQ(a.speed_squared.cell, b.speed_squared.cell) << "step " << step;
    EXPECT_EQ(a.speed_squared_per_depth.value, b.speed_squared_per_depth.value);
    EXPECT_EQ(a.speed_squared_per_depth.cell, b.speed_squared_per_depth.cell);
    EXPECT_EQ(a.not_finite, b.not_finite);
    EXPECT_EQ(a.films, b.films);
    if (step < 0) return;  // nothing has come or gone yet
    for (const auto& cell : model.cells) {
      const fields::UnseenDepth of_objects = objects.unseen_depth(cell->id);
      const fields::UnseenDepth of_tables = tables.unseen_depth(cell->id);
      EXPECT_EQ(of_objects.recovered, of_tables.recovered) << "cell " << cell->id;
      EXPECT_EQ(of_objects.lifted, of_tables.lifted) << "cell " << cell->id;
    }
    int boundaries = 0;
    for (const auto& edge : model.interfaces) {
      if (edge->cell_right != nullptr) continue;
      const fields::BoundaryInflow of_objects = objects.boundary_inflow(boundaries);
      const fields::BoundaryInflow of_tables = tables.boundary_inflow(boundaries);
      EXPECT_EQ(of_objects.water, of_tables.water) << "edge " << edge->tag << ", step " << step;
      EXPECT_EQ(of_objects.bed, of_tables.bed) << "edge " << edge->tag << ", step " << step;
      ++boundaries;
    }
    EXPECT_GT(boundaries, 0);
  }

  template <class Model>
  void expect_same_for_every_instruction_set() {
    int run = 0;
    for (const char* set : {"baseline", "avx2", "avx512"}) {
      try {
        EXPECT_STREQ(engine::loops_for(set).instruction_set, set);
      } catch (const std::runtime_error&) {
        continue;  // this machine does not have it
      }
      processor_.instruction_set = set;
      expect_same<Model>({}, 2, 80);
      expect_same<Model>({.watched = true}, 2, 20);
      ++run;
    }
    processor_ = {};
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
  support::Told told_;
  engine::Processor processor_;  ///< of the tables; without more the best instruction set
  double arrival_depth_ = 0.3;   ///< m; some cells come to it and some go below
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
  arrival_depth_ = 0.0;  // a patch that comes to rest comes out of the water in its last step
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
  const support::RunGlobals globals(1e-3, 1.0, t_end);
  // Still water of one depth: every cell sets the step. Then a symmetric wave.
  for (const double wave : {0.0, 0.5}) {
    const auto model = support::build_rectangle<SWE>({26, 14, 26.0, 14.0});
    support::fill(*model, [&](double x, double) { return x > 6.0 && x < 20.0 ? 1.0 + wave : 1.0; });
    const cases::Case contents = support::case_of(*model);
    fields::ObjectsFlow objects(*model);
    fields::TablesFlow tables(contents, told_, 2, cells_per_patch);
    expect_same_steps(objects, *model, tables, true, 20);
    const int first = objects.notes().limiting_cell;
    ASSERT_GE(first, 0);
  }
}

TEST_F(Equality, HoldsForEveryInstructionSetOfTheMachine) {
  expect_same_for_every_instruction_set<SWE>();
  expect_same_for_every_instruction_set<SWE_Exner>();
}

TEST_F(Equality, HoldsOnADevice) {
  processor_.device = support::device_under_test();
  for (const int threads : {1, 3}) {
    expect_same<SWE>({}, threads, 60);
    expect_same<SWE_Exner>({}, threads, 60);
  }
  expect_same_for_every_combination_of_sources<SWE>(Water::in_the_west);
  expect_same_for_every_combination_of_sources<SWE_Exner>(Water::in_the_west);
}

TEST_F(Equality, HoldsOnADeviceWherePatchesHaveMoreCellsThanABlockHasThreads) {
  for (const engine::Device device : {support::device_under_test(), engine::Device::watched}) {
    processor_.device = device;
    const Options options{.watched = true,
                          .per_patch = engine::device::cells_per_patch(cases::Scheme::lhllc)};
    expect_same<SWE>(options, 2, 12);
    expect_same<SWE_Exner>(options, 2, 12);
  }
}

TEST_F(Equality, ADeviceTakesTheSameNotesAndSkipsTheSamePatches) {
  for (const Water water : {Water::everywhere, Water::in_the_west}) {
    const Options options{.water = water, .watched = true};
    processor_.device = engine::Device::none;
    const Work water_on_host = expect_same<SWE>(options, 2, 60);
    const Work bed_on_host = expect_same<SWE_Exner>(options, 2, 60);
    processor_.device = support::device_under_test();
    EXPECT_EQ(expect_same<SWE>(options, 2, 60).fewest_patches, water_on_host.fewest_patches);
    EXPECT_EQ(expect_same<SWE_Exner>(options, 2, 60).fewest_patches, bed_on_host.fewest_patches);
  }
}

TEST_F(Equality, ThreadsOfABlockOnADeviceDoNotRace) {
  processor_.device = engine::Device::watched;
  expect_same<SWE>({.watched = true}, 2, 12);
  expect_same<SWE_Exner>({.watched = true}, 2, 12);
}

TEST_F(Equality, TheTablesTakeAtMost160BytesPerCell) {
  const support::RunGlobals globals(1e-3);
  const auto model = support::build_rectangle<SWE>({200, 100, 200.0, 100.0});
  support::fill(*model, [](double, double) { return 1.0; });
  for (const auto& cell : model->cells) {
    cell->set_friction(0.03);
    cell->add_source_term(&model->friction_terms.emplace_back(0.03));
  }
  const cases::Case contents = support::case_of(*model);
  engine::Engine engine(contents, 2);
  engine.advance({0.0, 0.0, t_end, 1e-3});
  const double per_cell = static_cast<double>(engine.tables().bytes()) / model->n_cells;
  EXPECT_LE(per_cell, 160.0);
  EXPECT_GE(per_cell, 120.0);  // the columns that no run can do without
  RecordProperty("bytes_per_cell", std::to_string(per_cell));
}

TEST_F(Equality, AnUnknownInstructionSetIsRefused) {
  EXPECT_THROW(engine::loops_for("abacus"), std::runtime_error);
  EXPECT_THROW(engine::loops_for(""), std::runtime_error);
}

TEST_F(Equality, HoldsFromTheCaseOnBothPaths) {
  const support::RunGlobals globals(1e-3, 1.0, t_end);
  const support::SedimentParameters sediment(0.8e-3, 2.65, 0.42);
  const auto expect_same_from_case = [&](const PhysicalModel& described) {
    cases::Case contents = support::case_of(described);
    contents.has_infiltration = true;
    fields::ObjectsFlow objects(contents);
    fields::TablesFlow tables(contents, told_, 2, cells_per_patch);
    expect_same_steps(objects, objects.model(), tables, true, 40);
  };
  expect_same_from_case(*build<SWE>({.films = false}));
  expect_same_from_case(*build<SWE_Exner>({.films = false}));
}

/// Of a model two cells, in patches of their own, are not hyperbolic.
class NotHyperbolic : public Equality {
 protected:
  std::unique_ptr<SWE_Exner> build_not_hyperbolic() {
    auto model = build<SWE_Exner>({});
    for (const std::size_t i : {200, 500}) model->cells[i]->dqs_dh = 1e3;
    return model;
  }
  [[noreturn]] void step_objects_and_exit() {
    const auto model = build_not_hyperbolic();
    fields::ObjectsFlow flow(*model);
    flow.advance({0.0, 0.0, t_end, 1e-4});
    std::exit(0);
  }

  const support::RunGlobals globals_{1e-3, 1.0, t_end};
  const support::SedimentParameters sediment_{0.8e-3, 2.65, 0.42};
};

TEST_F(NotHyperbolic, BothPathsWarnOnceOfTheFirstCell) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::string of_first_cell = "in cell 200 .counted from 0. at t = 0 s";
  EXPECT_EXIT(step_objects_and_exit(), testing::ExitedWithCode(0), of_first_cell);

  const auto model = build_not_hyperbolic();
  const cases::Case contents = support::case_of(*model);
  for (const engine::Device device : {engine::Device::none, engine::Device::emulated}) {
    support::Told told;
    fields::TablesFlow tables(contents, told, 2, cells_per_patch, {.device = device});
    for (int step = 0; step < 2; ++step) {
      tables.engine().set_state(support::state_of(*model, contents));
      tables.advance({0.0, 0.0, t_end, 1e-4});
    }
    ASSERT_EQ(told.warnings.size(), 1U);
    EXPECT_EQ(told.warnings.front().rfind("in cell 200 (counted from 0) at t = 0 s", 0), 0U);
  }
}

TEST_F(NotHyperbolic, IsNotWarnedOfAgainByARunThatGoesOn) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto model = build_not_hyperbolic();
  const cases::Case contents = support::case_of(*model);
  engine::State state = support::state_of(*model, contents);
  fields::TablesFlow tables(contents, told_, 2, cells_per_patch);
  tables.load(state);
  tables.advance({0.0, 0.0, t_end, 1e-4});
  ASSERT_EQ(told_.warnings.size(), 1U);
  engine::State later;
  tables.save(later);
  state.has_told_not_hyperbolic = later.has_told_not_hyperbolic;

  support::Told told;
  fields::TablesFlow other(contents, told, 2, cells_per_patch);
  other.load(state);
  other.advance({0.0, 0.0, t_end, 1e-4});
  EXPECT_EQ(told.warnings.size(), 0U);
  const auto step_objects_and_exit = [&] {
    fields::ObjectsFlow objects(contents);
    objects.load(state);
    objects.advance({0.0, 0.0, t_end, 1e-4});
    std::exit(0);
  };
  EXPECT_EXIT(step_objects_and_exit(), testing::ExitedWithCode(0), "^$");
}
