// The processes of an MPI job read pieces of the files of a case, and have together what one that
// reads it whole would deal out.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "ranks/SplitReading.hpp"
#include "ranks/mpi/MpiGroup.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/TriangleGrid.hpp"
#include "support/mixed_grid.hpp"

namespace {

/// Rank 0 writes the case; all read it, whole and in pieces.
void expect_same(const cases::Case& contents, const std::string& edges_in_place = "") {
  ranks::MpiGroup group(MPI_COMM_WORLD);
  std::optional<support::TemporaryFolder> folder;
  std::string data_file;
  if (group.rank() == 0) {
    folder.emplace();
    data_file = test_ranks::write_case(contents, *folder);
    if (!edges_in_place.empty()) folder->write("edges.txt", edges_in_place);
    ranks::broadcast_out(group, data_file);
  } else {
    ranks::broadcast_in(group, data_file);
  }
  const test_ranks::WholeReading whole(data_file);
  EXPECT_EQ(whole.told().status == 0, edges_in_place.empty()) << whole.told();
  whole.expect_same(group);
  int nothing = 0;
  ranks::gather_all_plain(group, nothing);  // rank 0 removes the files behind the others
}

}  // namespace

TEST(MpiReadShare, IsWhatOneProcessWouldDealOut) {
  support::TriangleGrid grid{.nx = 30, .ny = 20, .seed = 7};
  grid.west = {edge_code::discharge, -0.3};
  grid.east = {edge_code::water_level, 1.0};
  expect_same(grid.make());
  expect_same(support::mixed_grid(20, 17));
}

TEST(MpiReadShare, IsRefusedInTheWordsOfWholeReading) {
  std::string edges = "900\n";
  for (int k = 0; k < 700; ++k) edges += k == 650 ? "0 1 2 x -1\n" : "0 1 2 3 -1\n";
  expect_same(support::mixed_grid(20, 17), edges);
}
