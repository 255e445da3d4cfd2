#include "ranks/share_of.hpp"

#include <gtest/gtest.h>

#include "support/strip_mesh.hpp"

namespace {

using Numbers = std::vector<cases::Number>;

}  // namespace

TEST(ShareOf, SendsEveryGhostFromItsOwner) {
  const cases::Mesh mesh = support::strip_mesh(6);
  std::vector<std::vector<ranks::Halo>> halos;
  for (const int rank : {0, 1, 2}) {
    halos.push_back(ranks::share_of(mesh, {{0, 1}, {2, 4}, {3, 5}}, rank, 1).halos);
  }
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
