#include "case/read_requests.hpp"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "utils/TextScanner.hpp"

namespace {

class ReadRequestsTest : public testing::Test {
 protected:
  utils::TextScanner file(const std::string& text) const {
    return utils::TextScanner(folder.write("request.txt", text));
  }
  std::string error_at(const std::string& place) const {
    return "Error in file " + folder.file("request.txt") + ", line " + place + "\n";
  }

  support::TemporaryFolder folder;
};

TEST_F(ReadRequestsTest, GaugesAreAResultAnIntervalAndPoints) {
  auto text = file("2 out.txt 0.5\n1 2 3\n-4 5.25 6\n");
  const cases::GaugeRequest gauges = cases::read_gauges(text);
  EXPECT_EQ(gauges.result, "out.txt");
  EXPECT_EQ(gauges.interval, 0.5);
  ASSERT_EQ(gauges.points.size(), 2u);
  EXPECT_EQ(gauges.points[0].x, 1.0);
  EXPECT_EQ(gauges.points[0].y, 2.0);
  EXPECT_EQ(gauges.points[1].x, -4.0);
  EXPECT_EQ(gauges.points[1].y, 5.25);
}

TEST_F(ReadRequestsTest, AGaugeWithoutHeightEndsTheRun) {
  auto text = file("2 out.txt 0.5\n1 2 3\n-4 5.25");
  EXPECT_FATAL(
      cases::read_gauges(text), 255,
      testing::Eq(error_at("3, gauge 1 (of 0 to 1), z: found the end of the file, expected "
                           "a finite number.")));
}

TEST_F(ReadRequestsTest, SectionsAreAnIntervalAResultAndListsOfEdges) {
  auto text = file("3 60 q.txt\n2 7 5\n0\n1 7");
  const cases::SectionRequest request = cases::read_sections(text, 8);
  EXPECT_EQ(request.result, "q.txt");
  EXPECT_EQ(request.interval, 60.0);
  EXPECT_EQ(request.sections, (std::vector<std::vector<cases::Number>>{{7, 5}, {}, {7}}));
}

TEST_F(ReadRequestsTest, ASectionOverAnEdgeThatDoesNotExistEndsTheRun) {
  auto text = file("1 60 q.txt\n2 7 5");
  EXPECT_FATAL(cases::read_sections(text, 7), 255,
               testing::Eq(error_at(
                   "2, section 0 (of 0 to 0), edge: found \"7\", expected an index from 0 to 6.")));
}

TEST_F(ReadRequestsTest, SnapshotsKeepTheOrderOfTheirTimes) {
  auto text = file("3 0 20 10 and what follows");
  EXPECT_EQ(cases::read_snapshots(text).times, (std::vector<double>{0.0, 20.0, 10.0}));
}

TEST_F(ReadRequestsTest, MoreSnapshotsThanTheFileHoldsEndTheRun) {
  auto text = file("4 0 20");
  EXPECT_FATAL(cases::read_snapshots(text), 255,
               testing::Eq(error_at("1, header, number of snapshots: found \"4\", expected a count "
                                    "from 0 to 2, the most that the rest of the file can hold.")));
}

}  // namespace
