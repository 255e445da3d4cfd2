#include "output/CMonitorSection.hpp"

#include <cmath>

#include "interfaces/HydroBCWall.hpp"
#include "output/OutputTest.hpp"

namespace {

class CMonitorSectionTest : public OutputTest {
 protected:
  /// Adds an edge between two points to the list that sections refer to.
  void add_edge(MeshNode a, MeshNode b, std::size_t left = 0) {
    nodes_.push_back(std::make_unique<MeshNode>(a));
    nodes_.push_back(std::make_unique<MeshNode>(b));
    edges_.push_back(
        std::make_unique<HydroBCWall>(&cell(left), *nodes_[nodes_.size() - 2], *nodes_.back()));
  }
  /// Sections of the given text, which writes to result.txt of the test's folder.
  std::unique_ptr<CMonitorSection> sections(int count, const std::string& text,
                                            double interval = 60.0, double start_time = 0.0) {
    const std::string header = std::to_string(count) + " " + support::shown(interval) + " " +
                               folder.file("result.txt") + "\n";
    return std::make_unique<CMonitorSection>(folder.write("sections_in.txt", header + text), edges_,
                                             start_time);
  }
  std::string result() { return folder.read("result.txt"); }

 private:
  std::vector<std::unique_ptr<MeshNode>> nodes_;
  std::vector<std::unique_ptr<GenericInterface>> edges_;
};

TEST_F(CMonitorSectionTest, CreatesAResultWithoutHeader) {
  folder.write("result.txt", "earlier\n");
  sections(0, "");
  EXPECT_TRUE(folder.has("result.txt"));
  EXPECT_EQ(result(), "");
}

TEST_F(CMonitorSectionTest, SumsTheDischargeAlongTheNormalsTimesTheLengths) {
  add_edge({0, 0, 0}, {0, 3, 0});     // normal +x, length 3
  add_edge({0, 0, 0}, {2, 0, 0}, 1);  // normal -y, length 2
  cell(0).U.set_values(1.0, 0.5, 100.0);
  cell(1).U.set_values(1.0, 100.0, -0.25);
  const auto section = sections(3, "1 0\n1 1\n2 0 1\n");
  record(*section);
  EXPECT_EQ(result(), "0\t1.5\t0.5\t2\t\n");
}

TEST_F(CMonitorSectionTest, TakesTheStateOfTheFirstCellOnly) {
  add_edge({0, 0, 0}, {0, 1, 0}, 1);
  cell(0).U.set_values(1.0, 7.0, 0.0);
  cell(1).U.set_values(1.0, 2.0, 0.0);
  const auto section = sections(1, "1 0");
  record(*section);
  EXPECT_EQ(result(), "0\t2\t\n");
}

TEST_F(CMonitorSectionTest, ReportsZeroForASectionWithoutEdges) {
  cell(0).U.set_values(1.0, 7.0, 0.0);
  const auto section = sections(2, "0\n0\n");
  record(*section);
  record(*section);
  EXPECT_EQ(result(), "0\t0\t0\t\n0\t0\t0\t\n");
}

TEST_F(CMonitorSectionTest, CountsAnEdgeAsOftenAsItIsListed) {
  add_edge({0, 0, 0}, {0, 1, 0});
  cell(0).U.set_values(1.0, 2.0, 0.0);
  const auto section = sections(2, "1 0  2 0 0");
  record(*section);
  EXPECT_EQ(result(), "0\t2\t4\t\n");
}

TEST_F(CMonitorSectionTest, ChangesSignWithTheOrientationOfItsEdges) {
  add_edge({0, 0, 0}, {0.5, 2, 0});
  add_edge({0.5, 2, 0}, {0, 0, 0});
  cell(0).U.set_values(1.0, 3.0, 1.0);
  const auto section = sections(2, "1 0  1 1");
  record(*section);
  EXPECT_EQ(result(), "0\t5.5\t-5.5\t\n");
}

TEST_F(CMonitorSectionTest, RoundsOnceWhereProductAndSumAreFused) {
  // Along the edge, the two rounded products cancel; what the fused one keeps is their rounding.
  add_edge({0, 0, 0}, {1, 1, 0});
  const double q = 0.1;
  cell(0).U.set_values(1.0, q, q);
  const double length = std::sqrt(2.0);
  const double n = 1.0 / length;
  const double expected = std::fma(std::fma(q, n, q * -n), length, 0.0);
  ASSERT_NE(expected, 0.0);
  const auto section = sections(1, "1 0");
  record(*section);
  EXPECT_EQ(result(), "0\t" + support::shown(expected) + "\t\n");
}

TEST_F(CMonitorSectionTest, WritesTheTimeOfTheStepNotTheScheduledTime) {
  const auto section = sections(0, "");
  Globals::t = 0.125;
  record(*section);
  Globals::t = 61.75;
  record(*section);
  EXPECT_EQ(result(), "0.125\t\n61.75\t\n");
}

TEST_F(CMonitorSectionTest, IsDueFromItsScheduledTimeOnWithoutTolerance) {
  const auto section = sections(0, "", 60.0, 2.5);
  EXPECT_FALSE(section->CheckTime(std::nextafter(2.5, 0.0)));
  EXPECT_TRUE(section->CheckTime(2.5));
  record(*section);
  EXPECT_FALSE(section->CheckTime(std::nextafter(62.5, 0.0)));
  EXPECT_TRUE(section->CheckTime(62.5));
}

TEST_F(CMonitorSectionTest, CatchesUpOneRecordingAtATime) {
  const auto section = sections(0, "", 10.0);
  Globals::t = 35.0;
  int recordings = 0;
  for (; section->CheckTime(Globals::t) && recordings < 100; ++recordings) record(*section);
  EXPECT_EQ(recordings, 4);
  EXPECT_EQ(result(), "35\t\n35\t\n35\t\n35\t\n");
}

TEST_F(CMonitorSectionTest, WritesTheStateOfTheTriggerThoughTheCellChangesAfterTheCopy) {
  add_edge({0, 0, 0}, {0, 1, 0});
  cell(0).U.set_values(1.0, 2.0, 0.0);
  const auto section = sections(1, "1 0");
  section->WriteMeasure();
  Handoff::monitorSection.wait_for_copy();
  cell(0).U.set_values(99.0, 99.0, 99.0);
  Globals::t = 99.0;
  Handoff::join_all();
  EXPECT_EQ(result(), "0\t2\t\n");
}

TEST_F(CMonitorSectionTest, AcceptsAResultNameOfAnyLength) {
  std::string name = folder.path();
  for (int i = 0; i < 100; ++i) name += "/.";
  name += "/" + std::string(200, 'n');
  const std::string path = folder.write("sections_in.txt", "0 60 " + name);
  const CMonitorSection section(path, {}, 0.0);
  EXPECT_TRUE(folder.has(std::string(200, 'n')));
}

TEST_F(CMonitorSectionTest, RefusesAnEdgeThatDoesNotExist) {
  add_edge({0, 0, 0}, {0, 1, 0});
  for (const char* index : {"1", "-1"}) {
    EXPECT_EXIT(sections(1, std::string("2 0 ") + index), testing::ExitedWithCode(255),
                "sections_in\\.txt, line 2, section 0 \\(of 0 to 0\\), edge: found \"-?1\", "
                "expected an index from 0 to 0\\.\n$");
  }
}

TEST_F(CMonitorSectionTest, EndsTheRunWithoutItsFile) {
  EXPECT_EXIT(CMonitorSection("missing.txt", {}, 0.0), testing::ExitedWithCode(255),
              "^Fatal error. Impossible to open file missing\\.txt\\.\n$");
}

}  // namespace
