// The model with sediments on an exact unsteady solution, see support/SinkingChannel.hpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "interfaces/SedBCWaterLevel.hpp"
#include "model/CellSWE_Exner.hpp"
#include "model/SWE_Exner.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/SedimentParameters.hpp"
#include "support/SinkingChannel.hpp"

namespace {

using support::SinkingChannel;

struct Errors {
  double bed;    ///< mean absolute error, m
  double depth;  ///< relative L1 error
};

/// A strip of triangles with the boundaries that the model offers. The level boundary counts its
/// depth from the bed rock, so a constant level imposes the steady depth although the bed sinks.
std::unique_ptr<SWE_Exner> build(const SinkingChannel& exact, int cells_along, double layer) {
  support::Rectangle strip{cells_along, 1, exact.L, exact.L / cells_along};
  strip.west = {-3, -exact.q};
  strip.east = {-4, 0.0};
  auto model = support::build_rectangle<SWE_Exner>(strip);
  for (const auto& cell : model->cells) {
    cell->set_bed_rock_level(exact.bed(cell->center.x, 0.0) - layer);
    cell->set_hs(layer);
    cell->set_friction(exact.n);
    cell->add_source_term(&model->friction_terms.emplace_back(exact.n));
  }
  support::fill(
      *model, [&](double x, double) { return exact.bed(x, 0.0) + exact.h(x); }, exact.q);
  for (const auto& cell : model->cells) static_cast<CellSWE_Exner&>(*cell).compute_qs_MPM();
  for (const auto& interface : model->interfaces) {
    if (auto* outlet = dynamic_cast<SedBCWaterLevel*>(interface.get())) {
      outlet->level_imposed = outlet->cell_left->bed_rock_level + exact.h(exact.L);
    }
  }
  return model;
}

/// Errors between x_from and x_to after t_end.
Errors errors_after(double t_end, int cells_along, double x_from, double x_to) {
  const support::RunGlobals globals(1e-4);
  const SinkingChannel exact;
  const support::SedimentParameters sand(exact.d, exact.s, exact.porosity);
  const auto model = build(exact, cells_along, 0.5);
  while (Globals::t < t_end) support::advance(*model, 1, 0.9);

  double area = 0.0, bed = 0.0, depth = 0.0, exact_depth = 0.0;
  for (const auto& cell : model->cells) {
    const double x = cell->center.x;
    if (x < x_from || x > x_to) continue;
    area += cell->area;
    bed += cell->area * std::fabs(cell->bed_level - exact.bed(x, Globals::t));
    depth += cell->area * std::fabs(cell->U.h - exact.h(x));
    exact_depth += cell->area * exact.h(x);
  }
  return {bed / area, depth / exact_depth};
}

}  // namespace

TEST(SinkingChannel, HasTheKnownProfile) {
  const SinkingChannel exact;
  EXPECT_NEAR(exact.h(0.0), 1.685864, 1e-6);
  EXPECT_NEAR(exact.h(50.0), 1.411551, 1e-6);
  EXPECT_NEAR(exact.bed(0.0, 0.0), -0.277533, 1e-6);
  EXPECT_NEAR(exact.bed(75.0, 0.0), -0.022540, 1e-6);
}

// The inflow brings no sediment, so the bed scours there; the scour has not reached 40 m by then.
TEST(SinkingChannel, TheErrorFallsWithTheMeshAwayFromTheInflow) {
#ifdef QUILLMERE_SANITIZED
  GTEST_SKIP() << "shorter tests run the same code";
#endif
  const double t_end = 900.0;
  const double sunk = SinkingChannel::sunk(t_end);
  Errors coarser{};
  for (const int cells : {50, 100, 200}) {
    const Errors errors = errors_after(t_end, cells, 40.0, 95.0);
    std::printf("%4d cells: bed %.3g m (%.2g %% of the sinking), depth %.3g relative\n", cells,
                errors.bed, 100.0 * errors.bed / sunk, errors.depth);
    EXPECT_LT(errors.bed, 0.03 * sunk) << cells;
    EXPECT_LT(errors.depth, 2e-3) << cells;
    if (cells > 50) {
      EXPECT_GT(std::log2(coarser.bed / errors.bed), 0.7) << cells;
      EXPECT_GT(std::log2(coarser.depth / errors.depth), 0.6) << cells;
    }
    coarser = errors;
  }
}

TEST(SinkingChannel, WhatTheInflowDoesNotBringIsMissingFromTheBed) {
  const double t_end = 900.0;
  const double missing = SinkingChannel::beta * t_end /
                         ((1.0 - SinkingChannel::porosity) * SinkingChannel::L);  // mean, m
  const Errors errors = errors_after(t_end, 100, 0.0, 100.0);
  EXPECT_NEAR(errors.bed, missing, 0.1 * missing);
}
