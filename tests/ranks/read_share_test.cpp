// Ranks that read pieces of the files of a case get what one that reads it whole would deal out.
#include "ranks/read_share.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <regex>
#include <sstream>

#include "ranks/SplitReading.hpp"
#include "ranks/on_ranks.hpp"
#include "support/TriangleGrid.hpp"
#include "support/basin.hpp"
#include "support/mixed_grid.hpp"
#include "support/trials.hpp"

namespace {

class ReadShare : public testing::Test {
 protected:
  test_ranks::WholeReading expect_same(const cases::Case& contents,
                                       const std::vector<int>& counts = {1, 2, 3, 5, 7}) {
    const test_ranks::WholeReading whole(test_ranks::write_case(contents, folder_));
    for (const int count : counts) {
      test_ranks::on_ranks(count, [&](ranks::Group& group) { whole.expect_same(group); });
    }
    return whole;
  }

  /// The basin with boundaries that its model can read from files.
  cases::Case basin(const support::BasinOptions& options) const {
    cases::Case contents = support::basin(options, folder_);
    int number = 0;
    for (cases::Series& series : contents.series) {
      series.file = folder_.write("series" + std::to_string(number++) + ".txt", "2 0 0.8 9 0.9");
    }
    for (cases::Boundary& boundary : contents.mesh.boundaries) {
      if (!options.sediments || boundary.series < 0) continue;
      const bool is_level = boundary.code == edge_code::limnigraph;
      boundary = {boundary.edge, is_level ? edge_code::water_level : edge_code::discharge, 0.7, -1};
    }
    return contents;
  }

  support::TemporaryFolder folder_;
};

}  // namespace

TEST_F(ReadShare, IsWhatOneRankWouldDealOut) {
  for (const bool sediments : {false, true}) {
    const auto whole = expect_same(basin({.sediments = sediments}));
    EXPECT_EQ(whole.told().status, 0) << whole.told();
  }
  expect_same(basin({.friction = false, .rain = false, .soils = false}), {3});
}

TEST_F(ReadShare, HasTwoRingsOfGhostsForTheSchemeThatLooksTwoCellsFar) {
  support::TriangleGrid grid{.nx = 17, .ny = 11, .seed = 4, .bed_by_file = true};
  grid.west = {edge_code::discharge, -0.3};
  grid.east = {edge_code::water_level, 1.0};
  grid.north = {edge_code::transmissive};
  const auto whole = expect_same(grid.make());
  EXPECT_EQ(whole.contents().scheme, cases::Scheme::hll2);
  EXPECT_EQ(whole.told().status, 0) << whole.told();
}

TEST_F(ReadShare, HasCellsOfAnyNumberOfNodesAndWhatLiesBehindAWall) {
  const auto whole = expect_same(support::mixed_grid(13, 9));
  EXPECT_EQ(whole.told().status, 0) << whole.told();
  EXPECT_GT(whole.told().warnings.size(), 10U);  // cells with four edges, walls with two sides
  EXPECT_FALSE(whole.contents().mesh.first_node.empty());
}

TEST_F(ReadShare, IsTheSameHoweverLateMessagesCome) {
  const test_ranks::WholeReading whole(test_ranks::write_case(basin({.sediments = true}), folder_));
  for (const int count : {3, 4}) {
    test_ranks::on_ranks(
        count, [&](ranks::Group& group) { whole.expect_same(group); }, true);
  }
}

TEST_F(ReadShare, LeavesRanksWithoutCellsWhereThereAreMoreThanThese) {
  expect_same(support::mixed_grid(2, 1), {2, 3, 4, 7});
}

namespace {

/// A case of many files, of which tests damage one.
class DamagedCase : public ReadShare {
 protected:
  void SetUp() override {
    cases::Case contents = basin({.sediments = is_with_sediments_});
    contents.fields.bed.assign(cases::at(contents.mesh.n_cells()), 0.1);
    data_file_ = test_ranks::write_case(contents, folder_);
  }

  /// What whole reading of the present files tells, after ranks have told the same.
  test_ranks::Told expect_same_words(int count) const {
    const test_ranks::WholeReading whole(data_file_);
    test_ranks::on_ranks(count, [&](ranks::Group& group) { whole.expect_same(group); });
    return whole.told();
  }
  /// The same with another text in place of a file.
  test_ranks::Told expect_same_words(const std::string& name, const std::string& text,
                                     const std::vector<int>& counts = {2, 3, 5}) const {
    const std::string before = folder_.read(name);
    folder_.write(name, text);
    test_ranks::Told told;
    for (const int count : counts) told = expect_same_words(count);
    folder_.write(name, before);
    return told;
  }

  /// The text of a file with another line in place of one.
  std::string with_line(const std::string& name, int line, const std::string& text) const {
    std::istringstream lines(folder_.read(name));
    std::string all, each;
    for (int k = 0; std::getline(lines, each); ++k) all += (k == line ? text : each) + "\n";
    return all;
  }

  bool is_with_sediments_ = false;
  std::string data_file_;
};

class DamagedCaseWithSediments : public DamagedCase {
 protected:
  DamagedCaseWithSediments() { is_with_sediments_ = true; }
};

}  // namespace

TEST_F(DamagedCase, IsRefusedInTheWordsOfWholeReading) {
  const auto expect_refusal = [&](const std::string& name, int line, const std::string& text,
                                  const std::string& words) {
    const test_ranks::Told told = expect_same_words(name, with_line(name, line, text));
    EXPECT_NE((told.error + told.output).find(words), std::string::npos) << told;
  };
  expect_refusal("nodes.txt", 300, "1 2 here", "nodes.txt, line 301, node 299 (of 0 to 404), z");
  expect_refusal("nodes.txt", 0, "9999", "header, number of records: found \"9999\"");
  expect_refusal("nodes.txt", 0, "407", "node 405 (of 0 to 406), x: found the end of the file");
  expect_refusal("cells.txt", 700, "3 1 2 405", "cell 699 (of 0 to 727), node: found \"405\"");
  expect_refusal("cells.txt", 500, "2 1 2", "line 501, cell 499");
  expect_refusal("cells.txt", 0, "0", "a mesh has cells");
  expect_refusal("nodes.txt", 200, "1e200 1e200 0", "cells.txt, line ");
  expect_refusal("edges.txt", 800, "0 -1 0 1 -7", "type -7 not defined");
  expect_refusal("edges.txt", 800, "0 -1 0 1 -33 missing.txt", "missing.txt");
  expect_refusal("edges.txt", 800, "0 -1 0 1 -3", "edge ");
  expect_refusal("initial.txt", 400, "1 2 no", "line 401, cell 400 (of 0 to 727), unit discharge");
  expect_refusal("hyetocells.txt", 600, "17", "source term ID 17 not found");
  expect_refusal("rain.txt", 0, "x", "rain.txt, line 1");
}

TEST_F(DamagedCase, IsToldOfTheFirstOfSeveralErrors) {
  const std::string series = folder_.write("short.txt", "2 0 0.8 9");
  std::string edges = with_line("edges.txt", 300, "0 1 2 x -1");
  folder_.write("edges.txt", edges);
  edges = with_line("edges.txt", 900, "0 -1 0 1 -7");
  folder_.write("edges.txt", edges);
  test_ranks::Told told = expect_same_words(3);
  EXPECT_NE(told.error.find("edge 299"), std::string::npos) << told;
  edges = with_line("edges.txt", 200, "0 -1 0 1 -33 " + series);
  folder_.write("edges.txt", edges);
  for (const int count : {2, 3, 7}) told = expect_same_words(count);
  EXPECT_NE(told.error.find("short.txt, line 1, sample 1"), std::string::npos) << told;
  told = expect_same_words("cells.txt", with_line("cells.txt", 700, "3 1 2 -4"));
  EXPECT_NE(told.error.find("cell 699"), std::string::npos) << told;
}

TEST_F(DamagedCase, GivesTheWarningsOfWholeReadingInTheirOrder) {
  std::string edges;
  std::istringstream lines(folder_.read("edges.txt"));
  int turned = 0;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream values(line);
    int left = 0, right = 0, node1 = 0, node2 = 0;
    std::string rest;
    const bool is_edge = static_cast<bool>(values >> left >> right >> node1 >> node2);
    std::getline(values, rest);
    if (is_edge && left % 9 == 0) {
      ++turned;
      line = std::to_string(left) + " " + std::to_string(right) + " " + std::to_string(node2) +
             " " + std::to_string(left % 27 == 0 ? node2 : node1) + rest;
    }
    if (is_edge && right >= 0 && left % 11 == 0) {
      line = line.substr(0, line.rfind(' ')) + " -5";
    }
    edges += line + "\n";
  }
  ASSERT_GT(turned, 40);
  folder_.write("edges.txt", edges);
  test_ranks::Told told;
  for (const int count : {2, 3, 5}) told = expect_same_words(count);
  EXPECT_GT(told.warnings.size(), 30U) << told;
  EXPECT_NE(told.warnings.back().find(" more edges without length."), std::string::npos) << told;
  // Of edges before the one that ends the run, and no others.
  told = expect_same_words("edges.txt", with_line("edges.txt", 400, "0 1 2 x -1"));
  EXPECT_NE(told.error.find("edge 399"), std::string::npos) << told;
  EXPECT_GT(told.warnings.size(), 5U);
}

TEST_F(DamagedCaseWithSediments, IsRefusedForWhatItsSedimentsMean) {
  const test_ranks::Told told = expect_same_words(
      "data.json",
      std::regex_replace(folder_.read("data.json"), std::regex("\"sediments porosity\": [0-9.]+"),
                         "\"sediments porosity\": 1.5"));
  EXPECT_NE(told.error.find("sediments porosity"), std::string::npos) << told;
  std::filesystem::remove(folder_.file("sediment.txt"));
  EXPECT_NE(expect_same_words(3).error.find("sediment.txt"), std::string::npos);
}

TEST_F(DamagedCase, AnywhereIsToldAsByWholeReading) {
  std::mt19937 random(41);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const std::string names[] = {"nodes.txt",     "cells.txt", "edges.txt",    "edges.txt",
                               "initial.txt",   "bed.txt",   "friction.txt", "hyetocells.txt",
                               "soilcells.txt", "data.json", "rain.txt",     "soils.txt"};
  const std::string scraps[] = {" ", "\n", "x", "-", "7", " 3 ", "-33", "1e300 ", " -3 missing "};
  constexpr int trials = support::trials(250);
  int refused = 0;
  for (int trial = 0; trial < trials; ++trial) {
    const std::string& name = names[below(std::size(names))];
    std::string text = folder_.read(name);
    ASSERT_FALSE(text.empty()) << name;
    for (std::size_t times = 1 + below(3); times > 0; --times) {
      text.replace(below(text.size() + 1), below(4), scraps[below(std::size(scraps))]);
    }
    const test_ranks::Told told = expect_same_words(name, text, {static_cast<int>(2 + below(4))});
    refused += told.status != 0;
    if (HasFailure()) FAIL() << "trial " << trial << ", " << name << ": " << told;
  }
  EXPECT_GT(refused, trials * 2 / 5);
  EXPECT_LT(refused, trials);
}
