// Dam break on wet ground against the exact solution of Stoker (1957), Water Waves, ch. 10, with
// the parameters of Delestre et al. (2013), Int. J. Numer. Meth. Fluids 72, section 4.1.1.
#include <gtest/gtest.h>

#include <cmath>

#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"

namespace {

constexpr double g = 9.81;
constexpr double L = 10.0;
constexpr double x0 = 5.0;
constexpr double hl = 0.005;
constexpr double hr = 0.001;
constexpr double T = 6.0;

/// Depth between the rarefaction and the shock, by bisection.
double middle_depth() {
  double low = hr;
  double high = hl;
  for (int i = 0; i < 200; ++i) {
    const double h = 0.5 * (low + high);
    const double rarefaction = 2.0 * (std::sqrt(g * hl) - std::sqrt(g * h));
    const double shock = (h - hr) * std::sqrt(0.5 * g * (1.0 / h + 1.0 / hr));
    (rarefaction > shock ? low : high) = h;
  }
  return low;
}

/// Exact depth at time T.
double exact_depth(double x) {
  const double hm = middle_depth();
  const double cl = std::sqrt(g * hl);
  const double cm = std::sqrt(g * hm);
  const double shock_speed = hm * 2.0 * (cl - cm) / (hm - hr);
  if (x <= x0 - cl * T) return hl;
  if (x <= x0 + (2.0 * cl - 3.0 * cm) * T) {
    return 4.0 / (9.0 * g) * std::pow(cl - (x - x0) / (2.0 * T), 2);
  }
  return x <= x0 + shock_speed * T ? hm : hr;
}

/// Advances the model to time T exactly.
void advance_to_end(SWE& model, double courant) {
  double next = courant * model.dtMin();
  while (Globals::t < T) {
    Globals::dt = std::min(next, T - Globals::t);
    next = courant * model.computeFlowStep();
    Globals::t += Globals::dt;
  }
}

TEST(DamBreakOnWetGround, FollowsTheExactSolutionWithinOnePercent) {
  const support::RunGlobals globals(1e-8);
  const int cells_along = 400;
  const double dx = L / cells_along;
  const auto model = support::build_rectangle({cells_along, 1, L, dx});
  support::fill(*model, [](double x, double) { return x < x0 ? hl : hr; });
  advance_to_end(*model, 0.9);

  double difference = 0.0;
  double total = 0.0;
  for (const auto& cell : model->cells) {
    const double exact = exact_depth(cell->center.x);
    difference += std::abs(cell->U.h - exact) * cell->area;
    total += exact * cell->area;
  }
  EXPECT_LE(difference / total, 0.01);
  // The middle state is there, and not merely a smear between the two levels.
  const double hm = middle_depth();
  for (const auto& cell : model->cells) {
    if (std::abs(cell->center.x - 6.0) > 0.1) continue;
    EXPECT_NEAR(cell->U.h, hm, 0.01 * hm);
  }
}

}  // namespace
