#include "case/coincident_nodes.hpp"

#include <gtest/gtest.h>

namespace {

using Pairs = std::vector<std::pair<int, int>>;

/// A square whose two triangles do not share the diagonal, which the second has `apart` away.
struct Crack {
  std::vector<double> x, y;
  std::vector<std::array<int, 2>> boundary = {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}};
  explicit Crack(double apart) : x{0, 1, 1, 0 - apart, 1 - apart, 0 - apart}, y{0, 0, 1, 0, 1, 1} {}
  Pairs pairs(double distance = -1.0) const {
    return cases::coincident_nodes(x, y, boundary, distance);
  }
};

TEST(CoincidentNodes, AreThoseCloseBesideTheEdgesOfTheBoundary) {
  const Pairs both = {{0, 3}, {2, 4}};
  EXPECT_EQ(Crack(0.0).pairs(), both);
  EXPECT_EQ(Crack(0.0009).pairs(), both);
  EXPECT_EQ(Crack(0.002).pairs(), Pairs());
}

TEST(CoincidentNodes, LieWithinADistanceThatIsGiven) {
  const Pairs both = {{0, 3}, {2, 4}};
  EXPECT_EQ(Crack(0.25).pairs(0.25), both);
  EXPECT_EQ(Crack(0.25).pairs(0.24), Pairs());
  EXPECT_EQ(Crack(0.0).pairs(0.0), both);
  EXPECT_EQ(Crack(1e-9).pairs(0.0), Pairs());
}

TEST(CoincidentNodes, InsideOfTheMeshAreNoCrack) {
  Crack crack(0.0);
  crack.boundary = {{0, 1}, {1, 2}, {4, 5}, {5, 3}};  // 0 and 3 still, 2 and 4 still
  EXPECT_EQ(crack.pairs().size(), 2u);
  crack.boundary = {{0, 1}, {1, 2}, {2, 0}};
  EXPECT_EQ(crack.pairs(), Pairs());
}

TEST(CoincidentNodes, AreFoundFarFromTheOriginAndInGroups) {
  Crack crack(0.0);
  for (double& x : crack.x) x -= 6e5;
  for (double& y : crack.y) y -= 5e6;
  crack.x.insert(crack.x.end(), {crack.x[0], crack.x[0] - 1});
  crack.y.insert(crack.y.end(), {crack.y[0], crack.y[0]});
  crack.boundary.push_back({6, 7});
  EXPECT_EQ(crack.pairs(), (Pairs{{0, 3}, {2, 4}, {0, 6}, {3, 6}}));
}

}  // namespace
