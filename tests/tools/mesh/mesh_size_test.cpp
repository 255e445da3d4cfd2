#include "mesh/mesh_size.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using mesh_import::MeshSize;
using mesh_import::Refinement;

const std::vector<Refinement> square = {
    {{{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}}}, 1.0}};

TEST(MeshSize, GrowsByAFifthOfTheDistanceFromARegion) {
  const MeshSize size(5.0, square);
  EXPECT_EQ(size.at(5, 5), 1.0);
  EXPECT_NEAR(size.at(15, 5), 2.0, 1e-12);
  EXPECT_NEAR(size.at(-3, -4), 2.0, 1e-12);
  EXPECT_EQ(size.at(30, 5), 5.0);
  EXPECT_EQ(size.at(1e6, 5), 5.0);
  EXPECT_EQ(size.smallest(), 1.0);
}

TEST(MeshSize, IsThatOfAShortSideNearIt) {
  MeshSize size(5.0, {});
  size.add_side({100, 0, 0}, {102, 0, 0});
  size.add_side({200, 0, 0}, {220, 0, 0});
  EXPECT_EQ(size.at(101, 0), 2.0);
  EXPECT_NEAR(size.at(101, 10), 4.0, 1e-12);
  EXPECT_NEAR(size.at(91, 0), 4.0, 1e-12);
  EXPECT_EQ(size.at(101, 15.5), 5.0);
  EXPECT_EQ(size.at(210, 0), 5.0);
}

TEST(MeshSize, ExpectsEquilateralTriangles) {
  const double one = std::sqrt(3.0) / 4.0;
  EXPECT_NEAR(MeshSize(1.0, {}).expected_cells(100 * one), 100.0, 1e-9);
  EXPECT_NEAR(MeshSize(1.0, square).expected_cells(1e4), (1e4 + 100.0) / one, 1e-6);
  EXPECT_GT(MeshSize(5.0, square).expected_cells(1e4), (400.0 + 100.0) / one);
}

}  // namespace
