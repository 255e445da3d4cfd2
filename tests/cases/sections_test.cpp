#include "cases/CaseTest.hpp"

namespace {

class Sections : public CaseTest {
 protected:
  std::vector<std::string> rows() { return support::lines(folder.read("sections.txt")); }
  /// A field of a row.
  std::string at(std::size_t row, std::size_t field) {
    return support::split(rows().at(row), '\t').at(field);
  }
};

TEST_F(Sections, RecordTheInitialDischargeAtTheStart) {
  c.initial = [](double, double) { return support::InitialState{1.0, 0.5, 0.25}; };
  c.add_sections({c.edges_across(2), {}, c.edges_across(0)}, 60.0);
  run_well();
  // Three metres towards positive x, nothing, and three metres out of the western side.
  EXPECT_EQ(folder.read("sections.txt"), "0\t1.5\t0\t-1.5\t\n");
}

TEST_F(Sections, WriteTheTimeOfThePass) {
  c.add_sections({{0}}, 0.3);
  run_well();
  ASSERT_EQ(rows().size(), 4U);
  for (std::size_t k = 0; k < rows().size(); ++k) {
    const double due = 0.3 * static_cast<double>(k);
    const double pass = std::ceil(due / step_at_rest()) * step_at_rest();
    EXPECT_NEAR(std::stod(at(k, 0)), pass, 1e-5);
  }
}

TEST_F(Sections, CountAnEdgeAsOftenAsItIsListed) {
  c.west = "-3 -0.25";
  c.east = "-2";
  const int edge = c.edges_across(2).at(1);
  c.add_sections({{edge}, {edge, edge}, {edge, edge, edge}}, 0.2);
  run_well();
  ASSERT_GE(rows().size(), 5U);
  const double once = std::stod(at(4, 1));
  EXPECT_NE(once, 0.0);
  EXPECT_NEAR(std::stod(at(4, 2)), 2.0 * once, 1e-5 * std::abs(once));
  EXPECT_NEAR(std::stod(at(4, 3)), 3.0 * once, 1e-5 * std::abs(once));
}

TEST_F(Sections, StandInTheWorkingDirectoryNotInTheOutputFolder) {
  c.add_sections({{0}}, 60.0, "section_results");
  run_well();
  EXPECT_TRUE(folder.has("section_results"));
  EXPECT_FALSE(folder.has("out/section_results"));
}

TEST_F(Sections, WithoutSectionsWriteOnlyTimes) {
  c.add_sections({}, 60.0);
  run_well();
  EXPECT_EQ(folder.read("sections.txt"), "0\t\n");
}

TEST_F(Sections, AreLostWithAWarningWhenTheResultCannotBeCreated) {
  c.add_sections({{0}}, 0.1, "missing/result.txt");
  const support::RunResult result = run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Warning: The file missing/result.txt couldn't be created.\n");
}

TEST_F(Sections, EndTheRunForAnEdgeThatDoesNotExist) {
  c.add_sections({{0, 42}, {1, 43}}, 0.1);
  expect_stop(
      "Error in file sections_in.txt, line 3, section 1 (of 0 to 1), edge: found \"43\", expected "
      "an index from 0 to 42.\n");
}

}  // namespace
