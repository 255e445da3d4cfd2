// The books of a run against volumes known by hand, on both paths.
#include "report/VolumeLedger.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "case/boundary_kinds.hpp"
#include "fields/ObjectsFlow.hpp"
#include "model/SWE_Exner.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/SedimentParameters.hpp"
#include "support/TablesOfModel.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/flow.hpp"

namespace {

constexpr double length = 10.0, width = 4.0;  // m
constexpr double area = length * width;

support::Rectangle basin(const support::Side& west = {}, const support::Side& east = {}) {
  return {20, 8, length, width, west, east};
}

const Passed& passed(const Books& books, int code) {
  return books.boundaries.at(
      static_cast<std::size_t>(cases::boundary_kind(code) - cases::boundary_kinds.data()));
}

/// Nothing came or went anywhere.
void expect_closed(const Books& books) {
  for (const Passed& passed : books.boundaries) {
    EXPECT_EQ(passed.in.value(), 0.0);
    EXPECT_EQ(passed.out.value(), 0.0);
  }
}

struct Ledgers {
  Books water, sediment;
};

/// Runs a model with its books; the parameter is whether it runs on the tables.
class Ledger : public testing::TestWithParam<bool> {
 protected:
  const support::RunGlobals globals{1e-3};

  Ledgers run(
      PhysicalModel& model, int steps, const std::function<void()>& before_step = [] {}) {
    support::TablesOfModel tables(model, 2, 64);
    fields::ObjectsFlow objects(model);
    fields::WholeFlow* const flow =
        GetParam() ? static_cast<fields::WholeFlow*>(&tables.flow) : &objects;
    flow->watch();
    VolumeLedger ledger(*flow, tables.contents);
    double next = 0.4 * flow->stable_step(0.0);
    span = 0.0;
    for (int i = 0; i < steps; ++i) {
      Globals::dt = next;
      if (GetParam()) support::store(*flow, model);
      before_step();
      next = 0.4 * flow->advance(support::step_times(Globals::dt));
      ledger.add_step(Globals::t, Globals::dt);
      span += Globals::dt;
      Globals::t += Globals::dt;
    }
    support::store(*flow, model);
    return {ledger.water(), ledger.sediment()};
  }

  double span = 0.0;  ///< sum of the steps that were applied, s
};

INSTANTIATE_TEST_SUITE_P(OnBothPaths, Ledger, testing::Bool(), [](const auto& path) {
  return path.param ? std::string("Tables") : std::string("Objects");
});

}  // namespace

TEST(Books, TheErrorIsWhatNoTermExplains) {
  Books books;
  books.initial = 100.0;
  books.final = 90.0;
  books.rain = 7.0;
  books.infiltrated = 5.0;
  books.created = 2.0;
  books.boundaries[0].add(10.0);
  books.boundaries[3].add(4.0);
  books.boundaries[3].add(-29.0);
  // 100 + 10 + 4 + 7 + 2 came to be, 29 + 5 went: 89 should be left.
  EXPECT_DOUBLE_EQ(books.error(), 1.0);
  EXPECT_DOUBLE_EQ(books.relative_error(), 1.0 / 124.0);
}

TEST(Books, WithoutAnyVolumeHaveNoError) { EXPECT_EQ(Books{}.relative_error(), 0.0); }

TEST(Books, OfStatesThatAreNotNumbersHaveAnErrorThatIsNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Books books;
  books.initial = 1.0;
  books.final = nan;
  EXPECT_TRUE(std::isnan(books.relative_error()));
  books = {};
  books.initial = nan;
  EXPECT_TRUE(std::isnan(books.relative_error()));
}

TEST_P(Ledger, ClosesInABasinOfWalls) {
  const auto model = support::build_rectangle(basin());
  support::fill(*model, [](double x, double) { return x < 5.0 ? 2.0 : 1.0; });
  const Ledgers ledger = run(*model, 200);
  const Books books = ledger.water;
  EXPECT_NEAR(books.initial, 0.5 * area * 2.0 + 0.5 * area * 1.0, 1e-12);
  EXPECT_EQ(books.rain, 0.0);
  EXPECT_EQ(books.infiltrated, 0.0);
  expect_closed(books);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
  EXPECT_GT(support::largest_discharge(*model), 0.1);
}

TEST_P(Ledger, BooksWhatAnImposedDischargeLetsIn) {
  const auto model = support::build_rectangle(basin({-3, -0.3}));
  support::fill(*model, [](double, double) { return 1.0; });
  const Books books = run(*model, 100).water;
  EXPECT_EQ(passed(books, edge_code::discharge).edges, 8);
  EXPECT_NEAR(passed(books, edge_code::discharge).in.value(), 0.3 * width * span, 1e-12);
  EXPECT_EQ(passed(books, edge_code::discharge).out.value(), 0.0);
  EXPECT_NEAR(books.final, area * 1.0 + 0.3 * width * span, 1e-11);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksWhatAnImposedDischargeTakesOut) {
  const auto model = support::build_rectangle(basin({}, {-3, 0.2}));
  support::fill(*model, [](double, double) { return 1.0; });
  const Books books = run(*model, 100).water;
  EXPECT_EQ(passed(books, edge_code::discharge).in.value(), 0.0);
  EXPECT_NEAR(passed(books, edge_code::discharge).out.value(), 0.2 * width * span, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksNothingForTheFourthEdgeOfACellWhichHasNoEffect) {
  SWE model;
  model.mesh_nodes = {{0.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {2.0, 2.0, 0.0}, {0.0, 2.0, 0.0}};
  const auto node = [&](int i) -> const MeshNode& {
    return model.mesh_nodes[static_cast<std::size_t>(i % 4)];
  };
  model.build_cell(0, {&node(0), &node(1), &node(2), &node(3)});
  model.n_cells = 1;
  for (int edge = 0; edge < 4; ++edge) {
    model.build_interface(edge_code::scheme_lhllc, edge, 0, -1, node(edge), node(edge + 1),
                          edge_code::discharge, -0.1, "");
  }
  model.cells.front()->sort_interfaces_by_tag();
  model.cells.front()->set_local_index_to_edges();
  support::fill(model, [](double, double) { return 1.0; });
  const Books books = run(model, 20).water;
  EXPECT_EQ(passed(books, edge_code::discharge).edges, 4);
  EXPECT_NEAR(passed(books, edge_code::discharge).in.value(), 3 * 0.1 * 2.0 * span, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksAHydrographAsItChanges) {
  const support::TemporaryFolder folder;
  // 0.4 - 0.2 t along the normal: the flow leaves until 2 s and enters from then on.
  const auto model =
      support::build_rectangle(basin({-33, 0.0, folder.write("series.txt", "2 0 0.4 10 -1.6")}));
  support::fill(*model, [](double, double) { return 1.0; });
  double in = 0.0, out = 0.0;
  const Books books = run(*model, 300, [&] {
                        const double q = 0.4 - 0.2 * Globals::t;
                        (q > 0.0 ? out : in) += std::abs(q) * width * Globals::dt;
                      }).water;
  ASSERT_GT(Globals::t, 3.0);
  ASSERT_LT(Globals::t, 10.0);
  EXPECT_NEAR(passed(books, edge_code::hydrograph).in.value(), in, 1e-12);
  EXPECT_NEAR(passed(books, edge_code::hydrograph).out.value(), out, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksSupercriticalWaterThatLeavesFreely) {
  // The discharge of 5 m2/s at 1 m, Froude number 1.6, leaves as it is until the wave of the
  // western wall arrives.
  const auto model = support::build_rectangle(basin({}, {-2}));
  support::fill(
      *model, [](double, double) { return 1.0; }, 5.0);
  const Books books = run(*model, 5).water;
  EXPECT_NEAR(passed(books, edge_code::transmissive).out.value(), 5.0 * width * span, 1e-12);
  EXPECT_EQ(passed(books, edge_code::transmissive).in.value(), 0.0);
  EXPECT_NEAR(books.final, area - 5.0 * width * span, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksWhatALevelLetsInAndOut) {
  const support::TemporaryFolder folder;
  const std::string above_then_below = folder.write("level.txt", "4 0 1.5 2 1.5 2.1 0.6 99 0.6");
  const std::vector<std::pair<support::Side, int>> sides = {
      {{-4, 1.5}, edge_code::water_level},
      {{-4, 0.6}, edge_code::water_level},
      {{-44, 0.0, above_then_below}, edge_code::limnigraph}};
  std::vector<Books> of_sides;
  for (const auto& [side, kind] : sides) {
    Globals::t = 0.0;
    const auto model = support::build_rectangle(basin(side));
    support::fill(*model, [](double, double) { return 1.0; });
    of_sides.push_back(run(*model, 300).water);
    const Books& books = of_sides.back();
    // The only way in or out.
    EXPECT_NEAR(passed(books, kind).in.value() - passed(books, kind).out.value(),
                books.final - books.initial, 1e-12);
    EXPECT_NEAR(books.final, support::volume_of(*model), 1e-12);
    EXPECT_LT(std::abs(books.relative_error()), 1e-14);
  }
  EXPECT_GT(passed(of_sides[0], edge_code::water_level).in.value(), 5.0);
  EXPECT_GT(passed(of_sides[1], edge_code::water_level).out.value(), 5.0);
  EXPECT_GT(passed(of_sides[2], edge_code::limnigraph).in.value(), 1.0);
  EXPECT_GT(passed(of_sides[2], edge_code::limnigraph).out.value(), 1.0);
}

TEST_P(Ledger, BooksRain) {
  RainTerm rain(1, 1, 1);
  rain.intensities = {0.002};
  const auto model = support::build_rectangle(basin());
  for (const auto& cell : model->cells) {
    if (cell->center.x < 5.0) cell->add_source_term(&rain);
  }
  support::fill(*model, [](double, double) { return 0.5; });
  const Books books = run(*model, 200).water;
  ASSERT_GT(Globals::t, 5.0);
  // A burst a second or so, up to the last one.
  EXPECT_LE(books.rain, 0.002 * 0.5 * area * Globals::t);
  EXPECT_GT(books.rain, 0.002 * 0.5 * area * (Globals::t - 1.1));
  EXPECT_NEAR(books.final, 0.5 * area + books.rain, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksWhatASoilTakes) {
  HortonTerm soil(1, 0.001, 0.001, 1.0, 10.0, 0.0);  // takes 1 mm/s, always
  const auto model = support::build_rectangle(basin());
  for (const auto& cell : model->cells) cell->add_source_term(&soil);
  support::fill(*model, [](double x, double) { return x < 5.0 ? 1.0 : 0.8; });
  const Books books = run(*model, 200).water;
  EXPECT_NEAR(books.infiltrated, 0.001 * area * span, 1e-12);
  EXPECT_NEAR(books.final, 0.9 * area - books.infiltrated, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, BooksWhatSoilsTakeThatRecoverMeanwhile) {
  HortonTerm clay(1, 0.001, 0.001, 1.0, 10.0, 0.1);
  GreenAmptTerm loam(2, 1e-4, 0.11, 0.2, 0.45, 2.0, 0.05);
  const auto model = support::build_rectangle(basin());
  for (const auto& cell : model->cells) {
    cell->param.infiltrated_depth = 0.003;
    cell->add_source_term(cell->id % 2 == 0 ? static_cast<SourceTerm*>(&clay) : &loam);
  }
  support::fill(*model, [](double, double) { return 1.0; });
  const Books books = run(*model, 300).water;
  double in_the_soil = -0.003 * area;
  for (const auto& cell : model->cells) in_the_soil += cell->param.infiltrated_depth * cell->area;
  EXPECT_NEAR(books.infiltrated, books.initial - books.final, 1e-12);
  EXPECT_GT(books.infiltrated, in_the_soil + 0.01);  // what recovered is not there any more
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

namespace {

std::unique_ptr<SWE_Exner> sand_basin(double layer, const support::Side& west,
                                      const support::Side& east, const support::Field& depth,
                                      double qx = 0.0) {
  auto model = support::build_rectangle<SWE_Exner>(basin(west, east));
  for (const auto& cell : model->cells) {
    cell->set_hs(layer);
    cell->set_friction(0.03);
    cell->add_source_term(&model->friction_terms.emplace_back(0.03));
  }
  support::fill(
      *model, [&](double x, double y) { return layer + depth(x, y); }, qx);
  return model;
}

double dam(double x, double) { return x < 4.0 ? 1.0 : 0.2; }

}  // namespace

TEST_P(Ledger, OfSedimentClosesInABasinOfWalls) {
  const support::SedimentParameters sand(0.001, 2.65, 0.4);
  const auto model = sand_basin(0.5, {}, {}, dam);
  const Ledgers ledger = run(*model, 200);
  const Books books = ledger.sediment;
  EXPECT_NEAR(books.initial, 0.5 * area, 1e-12);
  EXPECT_EQ(books.created, 0.0);
  expect_closed(books);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
  EXPECT_LT(std::abs(ledger.water.relative_error()), 1e-14);
}

TEST_P(Ledger, OfSedimentTellsWhatTheLimitAtTheBedRockCreated) {
  const support::SedimentParameters sand(0.001, 2.65, 0.4);
  const auto model = sand_basin(0.003, {}, {}, dam);
  const Books books = run(*model, 400).sediment;
  EXPECT_NEAR(books.initial, 0.003 * area, 1e-14);
  expect_closed(books);
  // Nothing else came or went, so that all that is more was created.
  EXPECT_GT(books.created, 1e-4 * books.initial);
  EXPECT_NEAR(books.created, books.final - books.initial, 1e-14 * books.initial);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
}

TEST_P(Ledger, OfSedimentBooksTheBedLoadThatLeaves) {
  const double porosity = 0.4;
  const support::SedimentParameters sand(0.001, 2.65, porosity);
  const auto model = sand_basin(
      0.5, {-3, -2.0}, {-2}, [](double, double) { return 1.0; }, 2.0);
  double out = 0.0;
  const Ledgers ledger = run(*model, 200, [&] {
    // The bed load of the cells at the open end, as a volume with pores.
    for (const auto& edge : model->interfaces) {
      if (edge->cell_right != nullptr || edge->normal.x < 0.5) continue;
      out += edge->cell_left->U.qsx / (1.0 - porosity) * edge->length * Globals::dt;
    }
  });
  const Books books = ledger.sediment;
  EXPECT_GT(out, 1e-4);
  EXPECT_NEAR(passed(books, edge_code::transmissive).out.value(), out, 1e-14);
  EXPECT_EQ(passed(books, edge_code::discharge).in.value(), 0.0);  // it feeds no sediment
  EXPECT_NEAR(books.final, 0.5 * area - out, 1e-12);
  EXPECT_LT(std::abs(books.relative_error()), 1e-14);
  const Books water = ledger.water;
  EXPECT_NEAR(passed(water, edge_code::discharge).in.value(), 2.0 * width * span, 1e-11);
  EXPECT_LT(std::abs(water.relative_error()), 1e-14);
}
