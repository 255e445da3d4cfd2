// The bed of a closed basin: its volume, and what the bed rock's limit adds to it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "model/CellSWE_Exner.hpp"
#include "model/SWE_Exner.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/SedimentParameters.hpp"

namespace {

double bed_volume(const PhysicalModel& model) {
  double sum = 0.0;
  for (const auto& cell : model.cells) sum += cell->U.hs * cell->area;
  return sum;
}

bool any_bare_rock(const PhysicalModel& model) {
  for (const auto& cell : model.cells) {
    if (cell->U.hs == 0.0) return true;
  }
  return false;
}

/// A dam break in a closed basin of 10 m by 4 m over a layer of sand (thickness in m).
std::unique_ptr<SWE_Exner> dam_break_over_sand(double layer) {
  auto model = support::build_rectangle<SWE_Exner>({40, 16, 10.0, 4.0});
  for (const auto& cell : model->cells) {
    cell->set_hs(layer);
    cell->set_friction(0.03);
    cell->add_source_term(&model->friction_terms.emplace_back(0.03));
  }
  support::fill(*model,
                [&](double x, double y) { return layer + (x + 0.3 * y < 4.0 ? 1.0 : 0.2); });
  return model;
}

}  // namespace

TEST(SedimentVolume, IsConstantInAClosedBasin) {
  const support::RunGlobals globals(1e-3);
  const support::SedimentParameters sand(0.001, 2.65, 0.4);
  const auto model = dam_break_over_sand(0.5);
  const double before = bed_volume(*model);
  double largest_change = 0.0;
  support::advance(*model, 1000, 0.5);
  for (const auto& cell : model->cells) {
    largest_change = std::max(largest_change, std::fabs(cell->U.hs - 0.5));
  }
  EXPECT_FALSE(any_bare_rock(*model));
  EXPECT_GT(largest_change, 0.005);  // the bed did move
  EXPECT_NEAR(bed_volume(*model), before, 1e-12 * before);
}

TEST(SedimentVolume, TheLimitAtTheBedRockAddsWhatTheFluxesOverdrew) {
  const support::RunGlobals globals(1e-3);
  const support::SedimentParameters sand(0.001, 2.65, 0.4);
  const auto model = dam_break_over_sand(0.003);
  const double before = bed_volume(*model);
  double created = 0.0;  // m3: layers below zero that the update lifted to zero
  double next = 0.5 * model->dtMin();
  for (int i = 0; i < 1000; ++i) {
    Globals::dt = next;
    model->computeFluxes();
    for (const auto& cell : model->cells) {
      const double inflow = cell->fluxes[0].hs + cell->fluxes[1].hs + cell->fluxes[2].hs;
      const double layer = cell->U.hs + Globals::dt / cell->area * inflow;
      if (layer < 0.0) created -= layer * cell->area;
    }
    next = 0.5 * model->computeFlowStep();
  }
  EXPECT_TRUE(any_bare_rock(*model));
  EXPECT_GT(created, 0.0);
  EXPECT_NEAR(bed_volume(*model) - before, created, 1e-12 * before);
  RecordProperty("created_share_of_the_bed", std::to_string(created / before));
  std::printf("the limit at the bed rock created %.3g of the sediment volume\n", created / before);
}
