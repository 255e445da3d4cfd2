#include "case/read_fields.hpp"

#include <gtest/gtest.h>

#include <utility>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "utils/TextScanner.hpp"

namespace {

using Column = std::vector<double>;

class ReadFieldsTest : public testing::Test {
 protected:
  utils::TextScanner file(const std::string& text) const {
    return utils::TextScanner(folder.write("field.txt", text));
  }

  void read(const cases::Key& key, utils::TextScanner& file, cases::Number n_cells) {
    ASSERT_NE(cases::cell_file(key), nullptr);
    cases::read_cell_file(*cases::cell_file(key), file, n_cells, fields);
  }

  support::TemporaryFolder folder;
  cases::CellFields fields;
};

TEST_F(ReadFieldsTest, EveryFileFillsItsColumns) {
  auto bed = file("1 2"), sediment = file("3 4"), manning = file("5 6"), depth = file("7 8");
  auto state = file("9 10 11\n12 13 14");
  read(cases::key("model/conditions/fixed bed level"), bed, 2);
  read(cases::key("model/conditions/initial sediments level"), sediment, 2);
  read(cases::key("model/conditions/friction"), manning, 2);
  read(cases::key("model/sources/initial infiltration"), depth, 2);
  read(cases::key("model/conditions/initial conditions"), state, 2);
  EXPECT_EQ(fields.bed, (Column{1.0, 2.0}));
  EXPECT_EQ(fields.sediment, (Column{3.0, 4.0}));
  EXPECT_EQ(fields.manning, (Column{5.0, 6.0}));
  EXPECT_EQ(fields.infiltrated, (Column{7.0, 8.0}));
  EXPECT_EQ(fields.level, (Column{9.0, 12.0}));
  EXPECT_EQ(fields.qx, (Column{10.0, 13.0}));
  EXPECT_EQ(fields.qy, (Column{11.0, 14.0}));
}

TEST_F(ReadFieldsTest, WhatFollowsTheLastCellIsIgnored) {
  auto bed = file("1 2 3 and more");
  read(cases::key("model/conditions/fixed bed level"), bed, 2);
  EXPECT_EQ(fields.bed.size(), 2u);
}

TEST_F(ReadFieldsTest, AMalformedValueEndsTheRunWithItsPlace) {
  auto manning = file("0.03\nrough");
  EXPECT_FATAL(read(cases::key("model/conditions/friction"), manning, 2), 255,
               testing::Eq("Error in file " + folder.file("field.txt") +
                           ", line 2, cell 1 (of 0 to 1), Manning coefficient: found \"rough\", "
                           "expected a finite number.\n"));
}

TEST_F(ReadFieldsTest, TermsOfCellsAreNumbersOfTheTermsThatBearTheirIds) {
  auto ids = file("7 -1 5 7");
  EXPECT_EQ(cases::read_terms(ids, 4, {5, 7}, cases::end_at_unknown_term),
            (std::vector<int>{1, -1, 0, 1}));
}

TEST_F(ReadFieldsTest, OfTwoTermsWithOneIdTheLaterCounts) {
  auto ids = file("5");
  EXPECT_EQ(cases::read_terms(ids, 1, {5, 7, 5}, cases::end_at_unknown_term),
            (std::vector<int>{2}));
}

TEST_F(ReadFieldsTest, UnknownIdsAreToldWithTheirCellsAndCountAsNone) {
  auto ids = file("5 6 5 -2");
  std::vector<std::pair<cases::Number, int>> unknown;
  const auto remember = [&](cases::Number cell, int id) { unknown.emplace_back(cell, id); };
  EXPECT_EQ(cases::read_terms(ids, 4, {5}, remember), (std::vector<int>{0, -1, 0, -1}));
  EXPECT_EQ(unknown, (std::vector<std::pair<cases::Number, int>>{{1, 6}, {3, -2}}));
}

TEST_F(ReadFieldsTest, ARunEndsAtAnUnknownIdWithStatusOne) {
  EXPECT_FATAL_OUTPUT(cases::end_at_unknown_term(3, 4), 1,
                      testing::Eq("Error: source term ID 4 not found\n"));
}

}  // namespace
