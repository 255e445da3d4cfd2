#include "output/CMonitorSection.hpp"

#include <cmath>
#include <filesystem>

#include "output/OutputTest.hpp"

namespace {

class CMonitorSectionTest : public OutputTest {
 protected:
  /// Adds an edge between two points to the mesh that sections refer to.
  void add_edge(physics::PlanPoint a, physics::PlanPoint b, cases::Number left = 0) {
    mesh_.left.push_back(left);
    mesh_.right.push_back(-1);
    mesh_.node1.push_back(add_node(a));
    mesh_.node2.push_back(add_node(b));
  }
  std::unique_ptr<CMonitorSection> sections(const std::vector<std::vector<cases::Number>>& edges,
                                            double interval = 60.0, double start_time = 0.0) {
    auto section = std::make_unique<CMonitorSection>(
        cases::SectionRequest{folder.file("result.txt"), interval, edges},
        fields::WholeGround(case_), start_time);
    section->begin();
    return section;
  }
  /// Records at time t, and waits until the line is written.
  void record(CMonitorSection& section, double t = 0.0) {
    section.WriteMeasure(flow, t);
    section.wait();
  }
  std::string result() { return folder.read("result.txt"); }

 private:
  cases::Number add_node(physics::PlanPoint node) {
    mesh_.x.push_back(node.x);
    mesh_.y.push_back(node.y);
    mesh_.z.push_back(0.0);
    return mesh_.n_nodes() - 1;
  }

  cases::Case case_;
  cases::Mesh& mesh_ = case_.mesh;
};

TEST_F(CMonitorSectionTest, CreatesAResultWithoutHeader) {
  folder.write("result.txt", "earlier\n");
  sections({});
  EXPECT_TRUE(folder.has("result.txt"));
  EXPECT_EQ(result(), "");
}

TEST_F(CMonitorSectionTest, SumsTheDischargeAlongTheNormalsTimesTheLengths) {
  add_edge({0, 0}, {0, 3});     // normal +x, length 3
  add_edge({0, 0}, {2, 0}, 1);  // normal -y, length 2
  cell(0).U.set_values(1.0, 0.5, 100.0);
  cell(1).U.set_values(1.0, 100.0, -0.25);
  const auto section = sections({{0}, {1}, {0, 1}});
  record(*section);
  EXPECT_EQ(result(), "0\t1.5\t0.5\t2\t\n");
}

TEST_F(CMonitorSectionTest, TakesTheStateOfTheFirstCellOnly) {
  add_edge({0, 0}, {0, 1}, 1);
  cell(0).U.set_values(1.0, 7.0, 0.0);
  cell(1).U.set_values(1.0, 2.0, 0.0);
  const auto section = sections({{0}});
  record(*section);
  EXPECT_EQ(result(), "0\t2\t\n");
}

TEST_F(CMonitorSectionTest, ReportsZeroForASectionWithoutEdges) {
  cell(0).U.set_values(1.0, 7.0, 0.0);
  const auto section = sections({{}, {}});
  record(*section);
  record(*section);
  EXPECT_EQ(result(), "0\t0\t0\t\n0\t0\t0\t\n");
}

TEST_F(CMonitorSectionTest, CountsAnEdgeAsOftenAsItIsListed) {
  add_edge({0, 0}, {0, 1});
  cell(0).U.set_values(1.0, 2.0, 0.0);
  const auto section = sections({{0}, {0, 0}});
  record(*section);
  EXPECT_EQ(result(), "0\t2\t4\t\n");
}

TEST_F(CMonitorSectionTest, ChangesSignWithTheOrientationOfItsEdges) {
  add_edge({0, 0}, {0.5, 2});
  add_edge({0.5, 2}, {0, 0});
  cell(0).U.set_values(1.0, 3.0, 1.0);
  const auto section = sections({{0}, {1}});
  record(*section);
  EXPECT_EQ(result(), "0\t5.5\t-5.5\t\n");
}

TEST_F(CMonitorSectionTest, RoundsOnceWhereProductAndSumAreFused) {
  // Along the edge, the two rounded products cancel; what the fused one keeps is their rounding.
  add_edge({0, 0}, {1, 1});
  const double q = 0.1;
  cell(0).U.set_values(1.0, q, q);
  const double length = std::sqrt(2.0);
  const double n = 1.0 / length;
  const double expected = std::fma(std::fma(q, n, q * -n), length, 0.0);
  ASSERT_NE(expected, 0.0);
  const auto section = sections({{0}});
  record(*section);
  EXPECT_EQ(result(), "0\t" + support::shown(expected) + "\t\n");
}

TEST_F(CMonitorSectionTest, WritesTheTimeOfTheStepNotTheScheduledTime) {
  const auto section = sections({});
  record(*section, 0.125);
  record(*section, 61.75);
  EXPECT_EQ(result(), "0.125\t\n61.75\t\n");
}

TEST_F(CMonitorSectionTest, IsDueFromItsScheduledTimeOnWithoutTolerance) {
  const auto section = sections({}, 60.0, 2.5);
  EXPECT_FALSE(section->CheckTime(std::nextafter(2.5, 0.0)));
  EXPECT_TRUE(section->CheckTime(2.5));
  record(*section);
  EXPECT_FALSE(section->CheckTime(std::nextafter(62.5, 0.0)));
  EXPECT_TRUE(section->CheckTime(62.5));
}

TEST_F(CMonitorSectionTest, CatchesUpOneRecordingAtATime) {
  const auto section = sections({}, 10.0);
  int recordings = 0;
  for (; section->CheckTime(35.0) && recordings < 100; ++recordings) record(*section, 35.0);
  EXPECT_EQ(recordings, 4);
  EXPECT_EQ(result(), "35\t\n35\t\n35\t\n35\t\n");
}

TEST_F(CMonitorSectionTest, WritesTheStateOfTheTriggerThoughTheCellChangesMeanwhile) {
  add_edge({0, 0}, {0, 1});
  cell(0).U.set_values(1.0, 2.0, 0.0);
  const auto section = sections({{0}});
  section->WriteMeasure(flow, 0.0);
  cell(0).U.set_values(99.0, 99.0, 99.0);
  section->wait();
  EXPECT_EQ(result(), "0\t2\t\n");
}

TEST_F(CMonitorSectionTest, AcceptsAResultNameOfAnyLength) {
  std::string name = folder.path();
  for (int i = 0; i < 100; ++i) name += "/.";
  name += "/" + std::string(200, 'n');
  CMonitorSection section({name, 60.0, {}}, fields::WholeGround(contents), 0.0);
  section.begin();
  EXPECT_TRUE(folder.has(std::string(200, 'n')));
}

TEST_F(CMonitorSectionTest, AsksForTheEndOfTheRunWhenTheDiskIsFull) {
  std::filesystem::create_symlink("/dev/full", folder.file("result.txt"));
  testing::internal::CaptureStderr();
  const auto section = sections({});
  EXPECT_FALSE(section->has_failed());
  record(*section);
  EXPECT_TRUE(section->has_failed());
  testing::internal::GetCapturedStderr();
}

}  // namespace
