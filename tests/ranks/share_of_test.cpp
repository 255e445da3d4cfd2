#include "ranks/share_of.hpp"

#include <gtest/gtest.h>

#include "engine/aligned_vector.hpp"
#include "support/strip_mesh.hpp"

namespace {

using engine::at;
using Numbers = std::vector<cases::Number>;

/// A halo by the numbers of the whole case.
ranks::Halo renumbered(const ranks::Halo& halo, const cases::Part& part) {
  ranks::Halo whole{halo.neighbour, {}, {}};
  for (const cases::Number cell : halo.sent) whole.sent.push_back(part.cell_number[at(cell)]);
  for (const cases::Number cell : halo.received) {
    whole.received.push_back(part.cell_number[at(cell)]);
  }
  return whole;
}

/// Those of all ranks of a strip of squares.
std::vector<std::vector<ranks::Halo>> halos_in_strip(int n, const std::vector<ranks::Cells>& cells,
                                                     int rings) {
  cases::Case contents;
  contents.mesh = support::strip_mesh(n);
  contents.fields.level = contents.fields.qx = contents.fields.qy = std::vector<double>(at(n), 1.0);
  cases::PartCutter cutter(contents);
  std::vector<std::vector<ranks::Halo>> halos;
  for (const ranks::Cells& of_rank : cells) {
    const ranks::Share share = ranks::share_of(cutter, of_rank, ranks::owners_of(cells), rings);
    auto& of_this = halos.emplace_back();
    for (const ranks::Halo& halo : share.halos) of_this.push_back(renumbered(halo, share.part));
  }
  return halos;
}

}  // namespace

TEST(ShareOf, SendsEveryGhostFromItsOwner) {
  const auto halos = halos_in_strip(6, {{0, 1}, {2, 4}, {3, 5}}, 1);
  ASSERT_EQ(halos[0].size(), 1U);
  EXPECT_EQ(halos[0][0].neighbour, 1);
  EXPECT_EQ(halos[0][0].sent, Numbers{1});
  EXPECT_EQ(halos[0][0].received, Numbers{2});
  ASSERT_EQ(halos[1].size(), 2U);
  EXPECT_EQ(halos[1][0].neighbour, 0);
  EXPECT_EQ(halos[1][0].sent, Numbers{2});
  EXPECT_EQ(halos[1][0].received, Numbers{1});
  EXPECT_EQ(halos[1][1].neighbour, 2);
  EXPECT_EQ(halos[1][1].sent, (Numbers{2, 4}));
  EXPECT_EQ(halos[1][1].received, (Numbers{3, 5}));
  ASSERT_EQ(halos[2].size(), 1U);
  EXPECT_EQ(halos[2][0].sent, (Numbers{3, 5}));
  EXPECT_EQ(halos[2][0].received, (Numbers{2, 4}));
}

TEST(ShareOf, SendsTheSecondRingThroughTheCellsOfAThirdRank) {
  const auto halos = halos_in_strip(5, {{0, 1}, {2}, {3, 4}}, 2);
  ASSERT_EQ(halos[0].size(), 2U);
  EXPECT_EQ(halos[0][0].sent, (Numbers{0, 1}));
  EXPECT_EQ(halos[0][1].neighbour, 2);
  EXPECT_EQ(halos[0][1].sent, Numbers{1});
  EXPECT_EQ(halos[0][1].received, Numbers{3});
  ASSERT_EQ(halos[1].size(), 2U);
  EXPECT_EQ(halos[1][0].received, (Numbers{0, 1}));
  EXPECT_EQ(halos[1][1].received, (Numbers{3, 4}));
  EXPECT_EQ(halos[2][0].sent, Numbers{3});
}

TEST(ShareOf, ReceivesWhatIsSent) {
  const std::vector<ranks::Cells> cells = {{0, 3, 4, 9}, {1, 2, 8, 11}, {5, 6, 7, 10}};
  for (const int rings : {1, 2}) {
    const auto halos = halos_in_strip(12, cells, rings);
    int messages = 0;
    for (int rank = 0; rank < 3; ++rank) {
      for (const ranks::Halo& halo : halos[at(rank)]) {
        for (const ranks::Halo& of_other : halos[at(halo.neighbour)]) {
          if (of_other.neighbour != rank) continue;
          EXPECT_EQ(halo.received, of_other.sent) << rank << " " << halo.neighbour;
          ++messages;
        }
      }
    }
    EXPECT_EQ(messages, 6);
  }
}
