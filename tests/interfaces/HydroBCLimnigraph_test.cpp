#include "interfaces/HydroBCLimnigraph.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 2 with the outward normal along x.
class HydroBCLimnigraphTest : public testing::Test {
 protected:
  HydroBCLimnigraph limnigraph(const std::string& samples) {
    return {&patch.left(), patch.a(), patch.b(), folder.write("z.txt", samples)};
  }

  support::RunGlobals globals{1e-6};
  support::TemporaryFolder folder;
  EdgePatch patch{{0.0, 0.0, 1.0}, {0.0, 2.0, 4.0}};
};

double level_at(HydroBCLimnigraph& limnigraph, double t) {
  Globals::t = t;
  limnigraph.Flux();
  return limnigraph.level_imposed;
}

TEST_F(HydroBCLimnigraphTest, InterpolatesTheLevel) {
  auto limnigraph = this->limnigraph("2\n0 1.0\n3600 2.0\n");
  EdgePatch::attach(limnigraph);
  EXPECT_EQ(level_at(limnigraph, 0.0), 1.0);
  EXPECT_EQ(level_at(limnigraph, 1800.0), 1.5);
}

TEST_F(HydroBCLimnigraphTest, ExtendsTheFirstIntervalBeforeTheFirstSample) {
  auto limnigraph = this->limnigraph("2\n0 1.0\n3600 2.0\n");
  EdgePatch::attach(limnigraph);
  EXPECT_EQ(level_at(limnigraph, -1800.0), 0.5);
}

TEST_F(HydroBCLimnigraphTest, StandsAtASampleTimeInTheIntervalThatEndsThere) {
  auto limnigraph = this->limnigraph("4  0 1  10 3  20 7  30 4");
  EdgePatch::attach(limnigraph);
  EXPECT_DOUBLE_EQ(level_at(limnigraph, 10.0), 3.0);
  EXPECT_EQ(limnigraph.current_index, 0);
  EXPECT_DOUBLE_EQ(level_at(limnigraph, 20.0), 7.0);
  EXPECT_EQ(limnigraph.current_index, 1);
  EXPECT_DOUBLE_EQ(level_at(limnigraph, 25.0), 5.5);
  EXPECT_EQ(limnigraph.current_index, 2);
}

TEST_F(HydroBCLimnigraphTest, TheIntervalNeverMovesBack) {
  auto limnigraph = this->limnigraph("3  0 1  10 3  20 7");
  EdgePatch::attach(limnigraph);
  level_at(limnigraph, 15.0);
  EXPECT_EQ(level_at(limnigraph, 5.0), 1.0);  // the second interval, extended
  EXPECT_EQ(limnigraph.current_index, 1);
}

TEST_F(HydroBCLimnigraphTest, HoldsTheLastValuePastTheLastSample) {
  auto limnigraph = this->limnigraph("3  0 1  10 3  20 7");
  EdgePatch::attach(limnigraph);
  EXPECT_EQ(level_at(limnigraph, 20.0), 7.0);
  EXPECT_EQ(level_at(limnigraph, 1e6), 7.0);
  EXPECT_EQ(limnigraph.current_index, 1);
}

TEST_F(HydroBCLimnigraphTest, TheDepthIsCountedFromTheBedWithItsSediments) {
  auto limnigraph = this->limnigraph("2  0 10  10 10");
  EdgePatch::attach(limnigraph);
  set_water(patch.left(), 6.0, 1.0, 0.0, 0.0);
  patch.left().set_hs(1.5);
  level_at(limnigraph, 5.0);
  EXPECT_EQ(limnigraph.h_imposed, 2.5);
  EXPECT_DOUBLE_EQ(limnigraph.c_imposed, std::sqrt(9.81 * 2.5));
}

TEST_F(HydroBCLimnigraphTest, ALevelBelowTheBedHasNoCelerity) {
  auto limnigraph = this->limnigraph("2  0 1  10 1");
  EdgePatch::attach(limnigraph);
  // c* = 0: velocity 1 + 2 * 2 = 5 m/s at the depth -3 m.
  set_water(patch.left(), 4.0, 4.0 * k, 4.0 * k, 0.0);
  level_at(limnigraph, 5.0);
  EXPECT_EQ(limnigraph.h_imposed, -3.0);
  EXPECT_EQ(limnigraph.c_imposed, 0.0);
  EXPECT_NEAR(patch.left().fluxes[0].h, 30.0, 1e-12);
  EXPECT_EQ(patch.left().fluxes[0].qx, 0.0);
}

TEST_F(HydroBCLimnigraphTest, AWetCellGetsTheFluxOfTheImposedLevel) {
  // Depth 4k, 1 m/s, 5 m/s along the edge; imposed depth 1 m, celerity sqrt(9.81) m/s.
  auto limnigraph = this->limnigraph("2  0 3  10 3");
  EdgePatch::attach(limnigraph);
  set_water(patch.left(), 2.0, 4.0 * k, 4.0 * k, 20.0 * k);
  level_at(limnigraph, 5.0);
  const double qn = 5.0 - 2.0 * std::sqrt(9.81);
  const HydraulicVariableSWE& slot = patch.left().fluxes[0];
  EXPECT_NEAR(slot.h, -2.0 * qn, 1e-13);
  EXPECT_NEAR(slot.qx, -2.0 * (4.905 + qn * qn), 1e-13);
  EXPECT_NEAR(slot.qy, -2.0 * 5.0 * qn, 1e-13);  // the cell's own water moves out
}

TEST_F(HydroBCLimnigraphTest, ADryCellIsFilledWithoutMomentum) {
  auto limnigraph = this->limnigraph("2  0 3  10 3");
  EdgePatch::attach(limnigraph);
  set_water(patch.left(), 2.0, 0.0, 0.0, 0.0);
  level_at(limnigraph, 5.0);
  EXPECT_DOUBLE_EQ(patch.left().fluxes[0].h, 2.0 * std::sqrt(9.81));
  EXPECT_EQ(patch.left().fluxes[0].qx, 0.0);
  EXPECT_EQ(patch.left().fluxes[0].qy, 0.0);
}

TEST_F(HydroBCLimnigraphTest, KnowsTheMiddleOfItsEdge) {
  const auto limnigraph = this->limnigraph("2  0 3  10 3");
  EXPECT_EQ(limnigraph.midpoint.x, 0.0);
  EXPECT_EQ(limnigraph.midpoint.y, 1.0);
  EXPECT_EQ(limnigraph.midpoint.z, 2.5);
}

TEST_F(HydroBCLimnigraphTest, EdgesThatNameTheSameFileShareTheSeries) {
  const auto first = limnigraph("2  0 3  10 3");
  const auto second = limnigraph("2  0 3  10 3");
  EXPECT_EQ(first.series, second.series);
}

}  // namespace
