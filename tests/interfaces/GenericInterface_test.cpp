#include "interfaces/GenericInterface.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;

GenericInterface interface_of(EdgePatch& patch) {
  return {&patch.left(), &patch.right(), patch.a(), patch.b()};
}

TEST(GenericInterface, TheNormalIsTheDirectionOfTheNodesTurnedClockwise) {
  EdgePatch patch({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_EQ(interface.normal.x, 0.0);
  EXPECT_EQ(interface.normal.y, -1.0);
  EXPECT_EQ(interface.normal.z, 0.0);
  EXPECT_EQ(interface.length, 1.0);
}

TEST(GenericInterface, ReversingTheNodesReversesTheNormal) {
  EdgePatch patch({1.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_EQ(interface.normal.x, 0.0);
  EXPECT_EQ(interface.normal.y, 1.0);
  EXPECT_EQ(interface.length, 1.0);
}

TEST(GenericInterface, LengthAndNormalArePlanQuantities) {
  EdgePatch patch({1.0, 1.0, 50.0}, {4.0, 5.0, -70.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_DOUBLE_EQ(interface.length, 5.0);
  EXPECT_DOUBLE_EQ(interface.normal.x, 0.8);
  EXPECT_DOUBLE_EQ(interface.normal.y, -0.6);
  EXPECT_EQ(interface.normal.z, 0.0);
  EXPECT_EQ(interface.edge().nx, interface.normal.x);
  EXPECT_EQ(interface.edge().ny, interface.normal.y);
  EXPECT_EQ(interface.edge().length, interface.length);
}

TEST(GenericInterface, AnEdgeWithoutLengthHasNoNormal) {
  EdgePatch patch({1.0, 1.0, 0.0}, {1.0, 1.0, 5.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_EQ(interface.length, 0.0);
  EXPECT_TRUE(std::isnan(interface.normal.x));
  EXPECT_TRUE(std::isnan(interface.normal.y));
}

TEST(GenericInterface, KeepsItsNodesInTheOrderGiven) {
  EdgePatch patch({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_EQ(interface.nodes[0], &patch.a());
  EXPECT_EQ(interface.nodes[1], &patch.b());
  EXPECT_EQ(interface.cell_left, &patch.left());
  EXPECT_EQ(interface.cell_right, &patch.right());
}

TEST(GenericInterface, ItsOwnFluxLeavesTheSlotsAlone) {
  EdgePatch patch({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  GenericInterface interface = interface_of(patch);
  EdgePatch::attach(interface);
  patch.left().fluxes[0].h = 7.0;
  interface.Flux();
  EXPECT_EQ(patch.left().fluxes[0].h, 7.0);
  EXPECT_EQ(patch.right().fluxes[0].h, 0.0);
}

TEST(GenericInterface, PointwiseFormulasAreZeroAtTheThresholdAndBelow) {
  const support::RunGlobals globals(0.01);
  for (const double h : {0.01, 0.005, 0.0, -1.0}) {
    EXPECT_EQ(GenericInterface::c(h), 0.0) << h;
    EXPECT_EQ(GenericInterface::Fr(2.0, h), 0.0) << h;
    EXPECT_EQ(GenericInterface::Sigma(2.0, h), 0.0) << h;
    EXPECT_EQ(GenericInterface::Mu(2.0, 3.0, h), 0.0) << h;
  }
}

TEST(GenericInterface, PointwiseFormulasFollowTheWater) {
  const support::RunGlobals globals(0.01);
  EXPECT_DOUBLE_EQ(GenericInterface::c(4.0 * k), 2.0);
  EXPECT_DOUBLE_EQ(GenericInterface::Fr(-24.0 * k, 4.0 * k), -3.0);
  EXPECT_DOUBLE_EQ(GenericInterface::Sigma(0.0, 2.0), 19.62);
  EXPECT_DOUBLE_EQ(GenericInterface::Sigma(3.0, 2.0), 24.12);
  EXPECT_DOUBLE_EQ(GenericInterface::Mu(3.0, -5.0, 2.0), -7.5);
}

TEST(GenericInterface, LiesBetweenItsTwoNodesInEitherOrder) {
  EdgePatch patch({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_TRUE(interface.With(&patch.a(), &patch.b()));
  EXPECT_TRUE(interface.With(&patch.b(), &patch.a()));
}

TEST(GenericInterface, OneNodeNamedTwiceIsNotTheEdge) {
  EdgePatch patch({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  const GenericInterface interface = interface_of(patch);
  EXPECT_FALSE(interface.With(&patch.a(), &patch.a()));
  EXPECT_FALSE(interface.With(&patch.b(), &patch.b()));
}

TEST(GenericInterface, ANodeAtTheSamePlaceIsAnotherNode) {
  EdgePatch patch({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  const GenericInterface interface = interface_of(patch);
  const MeshNode twin = patch.b();
  EXPECT_FALSE(interface.With(&patch.a(), &twin));
}

}  // namespace
