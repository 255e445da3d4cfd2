#include "model/MeshNode.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

void expect_node(const MeshNode& node, double x, double y, double z) {
  EXPECT_EQ(node.x, x);
  EXPECT_EQ(node.y, y);
  EXPECT_EQ(node.z, z);
}

TEST(MeshNode, IsTheOriginByDefault) { expect_node(MeshNode(), 0.0, 0.0, 0.0); }

TEST(MeshNode, TakesTheFirstThreeOfASequence) {
  expect_node(MeshNode(std::vector<double>{1.0, 2.0, 3.0, 4.0}), 1.0, 2.0, 3.0);
}

TEST(MeshNode, AddsComponents) {
  const MeshNode a(1.0, 2.0, 3.0);
  expect_node(a + MeshNode(10.0, 20.0, 30.0), 11.0, 22.0, 33.0);
  expect_node(a, 1.0, 2.0, 3.0);
  MeshNode b = a;
  b += a;
  expect_node(b, 2.0, 4.0, 6.0);
}

TEST(MeshNode, DividesComponents) {
  const MeshNode a(1.0, 2.0, 3.0);
  expect_node(a / 2.0, 0.5, 1.0, 1.5);
  expect_node(a, 1.0, 2.0, 3.0);
  MeshNode b = a;
  b /= 4.0;
  expect_node(b, 0.25, 0.5, 0.75);
}

TEST(MeshNode, HorizontalDistanceIgnoresElevation) {
  EXPECT_EQ(MeshNode(1.0, 1.0, 0.0).horizontal_distance({4.0, 5.0, 100.0}), 5.0);
}

TEST(MeshNode, StreamsItsComponentsEachWithATab) {
  std::ostringstream out;
  out << MeshNode(1.5, -2.0, 1234567.0);
  EXPECT_EQ(out.str(), "1.5\t-2\t1.23457e+06\t");
}

}  // namespace
