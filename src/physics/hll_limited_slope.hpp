// Limited slope of a quantity in a cell, from its three neighbours alone.
// Source: Barth and Jespersen (1989), AIAA 89-0366: no edge midpoint beyond the neighbours' values,
// here with a factor on that range, and in a form with one division and no order of evaluation.
#pragma once

#include "physics/hll_triangle.hpp"

namespace physics {

/// Slope of a quantity from its differences to the neighbours (0 where there is none). It changes
/// no edge midpoint by more than beta times the largest difference of either sign, and is exactly 0
/// where all differences have one sign.
QM_HD inline PlanVector limited_slope(const EdgeValues& differences, const SlopeWeights& w,
                                      const HllTriangle& cell, double beta) {
  const EdgeValues& D = differences;
  const PlanVector p = {w.x0 * D.k0 + w.x1 * D.k1 + w.x2 * D.k2,
                        w.y0 * D.k0 + w.y1 * D.k1 + w.y2 * D.k2};
  const EdgeValues m = at_midpoints(cell, p);
  const double up = largest_of(m);
  const double down = -smallest_of(m);
  const double most = larger(largest_of(D), 0.0);
  const double least = -smaller(smallest_of(D), 0.0);
  const double share = beta * smaller(most * down, least * up) / (up * down + 1e-300);
  const double f = smaller(1.0, share);
  return {f * p.x, f * p.y};
}

}  // namespace physics
