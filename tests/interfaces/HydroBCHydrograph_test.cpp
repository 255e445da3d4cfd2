#include "interfaces/HydroBCHydrograph.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 2 with the outward normal along x.
class HydroBCHydrographTest : public testing::Test {
 protected:
  HydroBCHydrograph hydrograph(const std::string& samples) {
    return {&patch.left(), patch.a(), patch.b(), folder.write("q.txt", samples)};
  }

  support::RunGlobals globals{1e-6};
  support::TemporaryFolder folder;
  EdgePatch patch{{0.0, 0.0, 0.0}, {0.0, 2.0, 0.0}};
};

double discharge_at(HydroBCHydrograph& hydrograph, double t) {
  Globals::t = t;
  hydrograph.Flux();
  return hydrograph.q_imposed;
}

TEST_F(HydroBCHydrographTest, InterpolatesTheDischarge) {
  auto hydrograph = this->hydrograph("2\n0 1.0\n3600 2.0\n");
  EdgePatch::attach(hydrograph);
  EXPECT_EQ(discharge_at(hydrograph, 0.0), 1.0);
  EXPECT_EQ(discharge_at(hydrograph, 1800.0), 1.5);
}

TEST_F(HydroBCHydrographTest, ExtendsTheFirstIntervalBeforeTheFirstSample) {
  auto hydrograph = this->hydrograph("2\n0 1.0\n3600 2.0\n");
  EdgePatch::attach(hydrograph);
  EXPECT_EQ(discharge_at(hydrograph, -1800.0), 0.5);
  EXPECT_EQ(hydrograph.current_index, 0);
}

TEST_F(HydroBCHydrographTest, StandsAtASampleTimeInTheIntervalThatStartsThere) {
  auto hydrograph = this->hydrograph("4  0 1  10 3  20 7  30 4");
  EdgePatch::attach(hydrograph);
  EXPECT_EQ(discharge_at(hydrograph, 10.0), 3.0);
  EXPECT_EQ(hydrograph.current_index, 1);
  EXPECT_EQ(discharge_at(hydrograph, 20.0), 7.0);
  EXPECT_EQ(hydrograph.current_index, 2);
}

TEST_F(HydroBCHydrographTest, SkipsIntervalsThatAStepLeapsOver) {
  auto hydrograph = this->hydrograph("4  0 1  10 3  20 7  30 4");
  EdgePatch::attach(hydrograph);
  EXPECT_EQ(discharge_at(hydrograph, 25.0), 5.5);
}

TEST_F(HydroBCHydrographTest, TheIntervalNeverMovesBack) {
  auto hydrograph = this->hydrograph("3  0 1  10 3  20 7");
  EdgePatch::attach(hydrograph);
  discharge_at(hydrograph, 15.0);
  EXPECT_EQ(discharge_at(hydrograph, 5.0), 1.0);  // the second interval, extended
  EXPECT_EQ(hydrograph.current_index, 1);
}

TEST_F(HydroBCHydrographTest, HoldsTheLastValuePastTheLastSample) {
  auto hydrograph = this->hydrograph("3  0 1  10 3  20 7");
  EdgePatch::attach(hydrograph);
  EXPECT_EQ(discharge_at(hydrograph, 20.0), 7.0);
  EXPECT_EQ(discharge_at(hydrograph, 1e6), 7.0);
  EXPECT_EQ(hydrograph.current_index, 1);
}

TEST_F(HydroBCHydrographTest, ADryCellExchangesTheDischargeWithoutMomentum) {
  auto hydrograph = this->hydrograph("2  0 -3  10 -5");
  EdgePatch::attach(hydrograph);
  set_water(patch.left(), 0.0, 1e-6, 3.0, 4.0);
  discharge_at(hydrograph, 5.0);
  EXPECT_DOUBLE_EQ(patch.left().fluxes[0].h, 8.0);
  EXPECT_EQ(patch.left().fluxes[0].qx, 0.0);
  EXPECT_EQ(patch.left().fluxes[0].qy, 0.0);
}

TEST_F(HydroBCHydrographTest, AWetCellGetsTheFluxOfTheImposedDischarge) {
  // Depth 4k, 1 m/s, 2 m/s along the edge: c = 2, Fr = 1/2, sigma = 12k, mu = 8k.
  auto hydrograph = this->hydrograph("2  0 -1  10 -1");
  EdgePatch::attach(hydrograph);
  set_water(patch.left(), 0.0, 4.0 * k, 4.0 * k, 8.0 * k);
  discharge_at(hydrograph, 5.0);
  // q = -1 = -9.81k: D = 9.81k - 4k = 5.81k, q - qn = -13.81k.
  EXPECT_NEAR(patch.left().fluxes[0].h, 2.0, 1e-14);
  EXPECT_NEAR(patch.left().fluxes[0].qx, -2.0 * (12.0 + 2.0 * 1.5 * 5.81) * k, 1e-13);
  EXPECT_NEAR(patch.left().fluxes[0].qy, -2.0 * (8.0 - 2.0 * 13.81 - 8.0 + 2.0 / 3.0 * 13.81) * k,
              1e-13);
}

TEST_F(HydroBCHydrographTest, EdgesThatNameTheSameFileShareTheSeriesAndNotThePlaceInIt) {
  auto first = hydrograph("3  0 1  10 3  20 7");
  auto second = hydrograph("3  0 1  10 3  20 7");
  EdgePatch::attach(first);
  EXPECT_EQ(first.series, second.series);
  discharge_at(first, 15.0);
  EXPECT_EQ(first.current_index, 1);
  EXPECT_EQ(second.current_index, 0);
}

TEST_F(HydroBCHydrographTest, AMissingFileEndsTheRun) {
  const std::string file = folder.file("absent.txt");
  EXPECT_FATAL(HydroBCHydrograph(&patch.left(), patch.a(), patch.b(), file), 255,
               testing::Eq("Fatal error. Impossible to open file " + file + ".\n"));
}

}  // namespace
