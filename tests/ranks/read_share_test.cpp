// Ranks that read pieces of the files of a case get what one that reads it whole would deal out.
#include "ranks/read_share.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <thread>

#include "ranks/DelayedGroup.hpp"
#include "ranks/InProcess.hpp"
#include "ranks/SplitReading.hpp"
#include "support/TriangleGrid.hpp"
#include "support/basin.hpp"
#include "support/mixed_grid.hpp"

namespace {

class ReadShare : public testing::Test {
 protected:
  static void on_ranks(int count, const std::function<void(ranks::Group&)>& body,
                       bool are_late = false) {
    ranks::InProcess job(count);
    std::vector<std::thread> members;
    for (int rank = 0; rank < count; ++rank) {
      members.emplace_back([&, rank] {
        if (!are_late) return body(*job.group(rank));
        test_ranks::DelayedGroup late(job.group(rank), 5);
        body(late);
      });
    }
    for (std::thread& member : members) member.join();
  }

  test_ranks::WholeReading expect_same(const cases::Case& contents,
                                       const std::vector<int>& counts = {1, 2, 3, 5, 7}) {
    const test_ranks::WholeReading whole(test_ranks::write_case(contents, folder_));
    for (const int count : counts) {
      on_ranks(count, [&](ranks::Group& group) { whole.expect_same(group); });
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
    on_ranks(
        count, [&](ranks::Group& group) { whole.expect_same(group); }, true);
  }
}

TEST_F(ReadShare, LeavesRanksWithoutCellsWhereThereAreMoreThanThese) {
  expect_same(support::mixed_grid(2, 1), {2, 3, 4, 7});
}
