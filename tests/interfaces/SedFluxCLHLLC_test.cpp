#include "interfaces/SedFluxCLHLLC.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"

namespace {

class SedFlux : public testing::Test {
 protected:
  SedFlux()
      : patch_({0.0, 0.0, 0.0}, {-0.8, 0.6, 0.0}),
        flux_(&patch_.left(), &patch_.right(), patch_.a(), patch_.b()) {
    Globals_Sed::g_sedimentsPorosity = 0.4;
    support::EdgePatch::attach(flux_);
  }
  ~SedFlux() override { Globals_Sed::g_sedimentsPorosity = 0.0; }

  support::RunGlobals globals_{1e-3};
  support::EdgePatch patch_;
  SedFluxCLHLLC flux_;
};

}  // namespace

TEST_F(SedFlux, TheBedIncludesItsSediment) {
  // Level water over layers of unequal thickness: at rest only if the flux sees the covered bed.
  for (ComputationalCell* cell : {&patch_.left(), &patch_.right()}) {
    cell->set_bed_rock_level(0.0);
    cell->set_hs(cell == &patch_.left() ? 0.2 : 0.7);
    cell->U.h = 1.0 - cell->bed_level;
    cell->free_surface_level = 1.0;
  }
  flux_.Flux();
  EXPECT_EQ(patch_.left().fluxes[0].h, 0.0);
  const double h = patch_.left().U.h;
  EXPECT_NEAR(patch_.left().fluxes[0].qx, -4.905 * h * h * 0.6, 1e-14);
}

TEST_F(SedFlux, OverwritesAllSixComponents) {
  support::set_water(patch_.left(), 0.0, 1.0, 0.5, 0.5);
  support::set_water(patch_.right(), 0.0, 0.8, 0.5, 0.5);
  patch_.left().U.qsx = 1e-3;
  patch_.left().fluxes[0].set_values(1, 2, 3, 4, 5, 6);
  flux_.Flux();
  EXPECT_NE(patch_.left().fluxes[0].hs, 4.0);
  EXPECT_EQ(patch_.left().fluxes[0].hs, -patch_.right().fluxes[0].hs);
  EXPECT_EQ(patch_.left().fluxes[0].qsx, 0.0);
  EXPECT_EQ(patch_.left().fluxes[0].qsy, 0.0);
}

TEST_F(SedFlux, SaysOnceWhereTheBedWaveIsNotHyperbolic) {
  support::set_water(patch_.left(), 0.0, 1.0, 0.5, 0.0);
  support::set_water(patch_.right(), 0.0, 1.0, 0.5, 0.0);
  patch_.right().dqs_dh = 100.0;
  Globals::t = 12.5;
  testing::internal::CaptureStderr();
  flux_.Flux();
  const std::string first = testing::internal::GetCapturedStderr();
  EXPECT_EQ(first.find("Warning: in cell 1 (counted from 0) at t = 12.5 s, with depth 1 m and "
                       "velocity 0.5 m/s, the bed wave is outside the range"),
            0u)
      << first;
  testing::internal::CaptureStderr();
  flux_.Flux();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
