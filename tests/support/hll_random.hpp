// Random triangles and water for the tests of the second-order scheme.
#pragma once

#include <random>

#include "physics/hll_edge_states.hpp"

namespace hll_random {

inline constexpr double zero_depth = 1e-4;  // m
inline constexpr double pi = 3.14159265358979323846;

class Source {
 public:
  double between(double low, double high) {
    return low + (high - low) * std::generate_canonical<double, 53>(generator_);
  }
  bool once_in(int count) { return between(0.0, count) < 1.0; }

  physics::PrimitiveWater water() {
    const double h = once_in(5) ? 0.0 : once_in(4) ? between(0.0, 0.002) : between(0.1, 3.0);
    const bool wet = h > zero_depth;
    return {h, wet ? between(-5.0, 5.0) : 0.0, wet ? between(-5.0, 5.0) : 0.0,
            wet ? between(0.0, 2.0) : 0.0};
  }
  physics::HllNeighbour neighbour() { return {water(), between(-2.0, 2.0)}; }

  /// A triangle whose corners run counter-clockwise around the origin.
  struct Corners {
    physics::PlanPoint a, b, c;
  };
  Corners corners() {
    const double turn = between(0.0, 2.0 * pi);
    const auto at = [&](double angle) {
      const double r = between(0.5, 2.0);
      return physics::PlanPoint{r * std::cos(turn + angle), r * std::sin(turn + angle)};
    };
    return {at(between(0.0, 1.0)), at(between(2.1, 3.1)), at(between(4.2, 5.2))};
  }
  physics::HllCell cell() {
    const Corners p = corners();
    const physics::PlanPoint nodes[] = {p.a, p.b, p.c};
    const double area = 0.5 * physics::twice_signed_area(p.a, p.b, p.c);
    const double perimeter = physics::cell_perimeter(3, [&](int i) { return nodes[i]; });
    return {physics::hll_triangle(p.a, p.b, p.c),
            {between(-1.0, 1.0), between(-1.0, 1.0)},
            1.0 / area,
            perimeter / 3.0};
  }
  physics::SlopeWeights weights() {
    const auto far = [&] { return physics::PlanVector{between(-2.0, 2.0), between(-2.0, 2.0)}; };
    return physics::least_squares_weights(far(), far(), far());
  }
  physics::Edge edge() {
    const double angle = between(-pi, pi);
    return {std::cos(angle), std::sin(angle), between(0.5, 3.0)};
  }
  physics::HllEdgeState edge_state() {
    const physics::HllNeighbour of = neighbour();
    return {of.water.h, of.bed + of.water.h, of.water.u, of.water.v, 1e9};
  }

 private:
  std::mt19937_64 generator_{20261122};
};

}  // namespace hll_random
