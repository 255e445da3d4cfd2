// Files of one record per cell.
#include <gtest/gtest.h>

#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

/// Two triangles of a unit square.
class CellFieldsTest : public testing::Test {
 protected:
  utils::TextScanner file(const std::string& text) const {
    return utils::TextScanner(folder.write("field.txt", text));
  }
  ComputationalCell& cell(std::size_t i) { return *model->cells[i]; }

  support::RunGlobals globals{0.01};
  support::TemporaryFolder folder;
  std::unique_ptr<SWE> model = support::build_rectangle({1, 1, 1.0, 1.0});
  RainTerm drizzle{3, 1, 60};
  RainTerm storm{5, 1, 60};
};

TEST_F(CellFieldsTest, BedLevelsSetRockAndBed) {
  auto bed = file("10.5\n -2\n");
  model->setFixedBedLevel(bed);
  EXPECT_EQ(cell(0).bed_rock_level, 10.5);
  EXPECT_EQ(cell(0).bed_level, 10.5);
  EXPECT_EQ(cell(1).bed_rock_level, -2.0);
}

TEST_F(CellFieldsTest, FrictionGivesEveryCellItsOwnTerm) {
  auto friction = file("0.03 0.05");
  model->setFriction(friction);
  ASSERT_EQ(model->friction_terms.size(), 2u);
  EXPECT_EQ(cell(0).friction, 0.03);
  EXPECT_EQ(cell(1).friction, 0.05);
  EXPECT_EQ(model->friction_terms[1].get_friction_coefficient(), 0.05);
  ASSERT_EQ(cell(1).source_terms.size(), 1u);
  EXPECT_EQ(cell(0).source_terms[0], &model->friction_terms[0]);
  EXPECT_EQ(cell(1).source_terms[0], &model->friction_terms[1]);
}

TEST_F(CellFieldsTest, ValuesBeyondTheLastCellAreIgnored) {
  auto friction = file("0.03 0.05 0.07 and more");
  model->setFriction(friction);
  EXPECT_EQ(model->friction_terms.size(), 2u);
}

TEST_F(CellFieldsTest, WithoutAFrictionFileThereIsNoFriction) {
  EXPECT_TRUE(model->friction_terms.empty());
  EXPECT_TRUE(cell(0).source_terms.empty());
  EXPECT_EQ(cell(0).friction, 0.0);
}

TEST_F(CellFieldsTest, InitialConditionsAreLevelAndDischarges) {
  auto bed = file("10 10");
  model->setFixedBedLevel(bed);
  auto initial = file("12 1.5 -2.5\n8 3 4");
  model->setHydrodynamicConditions(initial);
  EXPECT_EQ(cell(0).U.h, 2.0);
  EXPECT_EQ(cell(0).U.qx, 1.5);
  EXPECT_EQ(cell(0).U.qy, -2.5);
  EXPECT_EQ(cell(1).U.h, 0.0);  // level below the bed
  EXPECT_EQ(cell(1).U.qx, 0.0);
  EXPECT_EQ(cell(1).U.qy, 0.0);
  EXPECT_EQ(cell(1).free_surface_level, 8.0);
}

TEST_F(CellFieldsTest, ABedFileAfterTheSedimentDropsItFromTheBed) {
  cell(0).set_hs(0.5);
  auto bed = file("10 10");
  model->setFixedBedLevel(bed);
  EXPECT_EQ(cell(0).bed_level, 10.0);
  EXPECT_EQ(cell(0).U.hs, 0.5);
}

TEST_F(CellFieldsTest, InitialInfiltrationIsTheCumulativeDepth) {
  auto infiltrated = file("0.25 0");
  model->set_initial_infiltration(infiltrated);
  EXPECT_EQ(cell(0).param.infiltrated_depth, 0.25);
  EXPECT_EQ(cell(1).param.infiltrated_depth, 0.0);
}

TEST_F(CellFieldsTest, SourceTermsAreAttachedByTheirId) {
  auto ids = file("5 3");
  model->set_source_term_by_ID(ids, {&drizzle, &storm});
  ASSERT_EQ(cell(0).source_terms.size(), 1u);
  ASSERT_EQ(cell(1).source_terms.size(), 1u);
  EXPECT_EQ(cell(0).source_terms[0], &storm);
  EXPECT_EQ(cell(1).source_terms[0], &drizzle);
}

TEST_F(CellFieldsTest, CellsShareATerm) {
  auto ids = file("3 3");
  model->set_source_term_by_ID(ids, {&drizzle, &storm});
  EXPECT_EQ(cell(0).source_terms[0], &drizzle);
  EXPECT_EQ(cell(1).source_terms[0], &drizzle);
}

TEST_F(CellFieldsTest, MinusOneAttachesNothing) {
  auto ids = file("-1 -1");
  model->set_source_term_by_ID(ids, {&drizzle, &storm});
  EXPECT_TRUE(cell(0).source_terms.empty());
  EXPECT_TRUE(cell(1).source_terms.empty());
}

TEST_F(CellFieldsTest, OfTwoTermsWithOneIdTheLaterCounts) {
  storm.setID(3);
  auto ids = file("3 -1");
  model->set_source_term_by_ID(ids, {&drizzle, &storm});
  EXPECT_EQ(cell(0).source_terms[0], &storm);
}

TEST_F(CellFieldsTest, AnUnknownIdEndsTheRunWithStatusOne) {
  auto ids = file("3 4");
  const auto attach = [&] { model->set_source_term_by_ID(ids, {&drizzle, &storm}); };
  EXPECT_FATAL_OUTPUT(attach(), 1, testing::Eq("Error: source term ID 4 not found\n"));
}

TEST_F(CellFieldsTest, AShortFileEndsTheRunWithTheCellAndTheField) {
  auto initial = file("12 1.5 -2.5\n8 3\n");
  EXPECT_FATAL(model->setHydrodynamicConditions(initial), 255,
               testing::Eq("Error in file " + folder.file("field.txt") +
                           ", line 3, cell 1 (of 0 to 1), unit discharge qy: found the end of the "
                           "file, expected a finite number.\n"));
}

}  // namespace
