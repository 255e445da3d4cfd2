// A run of the cell-by-cell walk of a scheme, step by step.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>

#include "model/HllWalk.hpp"

namespace support {

class HllRun {
 public:
  explicit HllRun(const cases::Case& contents)
      : case_(contents), walk_(contents), t_(contents.t_start) {}

  void step() {
    dt_ = case_.cfl * walk_.step_bound(t_).step;
    walk_.advance(t_, dt_);
    t_ += dt_;
    ++steps_;
  }
  /// Until a time (s); `look` is called after every step.
  void until(
      double t, const std::function<void()>& look = [] {}) {
    while (t_ < t) {
      step();
      look();
    }
  }

  const HllWalk& walk() const { return walk_; }
  const HllWalk::Water& water() const { return walk_.water(); }
  double t() const { return t_; }
  double dt() const { return dt_; }
  long steps() const { return steps_; }

  double area(cases::Number cell) const { return case_.mesh.geometry_of(cell).area; }
  double volume() const {
    double sum = 0.0;
    for (cases::Number i = 0; i < case_.mesh.n_cells(); ++i) sum += depth(i) * area(i);
    return sum;
  }
  double depth(cases::Number cell) const { return water().h[cases::at(cell)]; }
  double least_depth() const { return *std::min_element(water().h.begin(), water().h.end()); }
  double largest_discharge() const {
    double q = 0.0;
    for (std::size_t i = 0; i < water().h.size(); ++i) {
      q = std::max(q, std::hypot(water().qx[i], water().qy[i]));
    }
    return q;
  }
  double largest_speed() const {
    double u = 0.0;
    for (std::size_t i = 0; i < water().h.size(); ++i) {
      if (water().h[i] <= case_.zero_depth) continue;
      u = std::max(u, std::hypot(water().qx[i], water().qy[i]) / water().h[i]);
    }
    return u;
  }
  /// What entered through all boundaries in the last step, m3.
  double inflow() const {
    double sum = 0.0;
    for (std::size_t b = 0; b < case_.mesh.boundaries.size(); ++b) sum += walk_.inflow(b) * dt_;
    return sum;
  }

 private:
  const cases::Case& case_;
  HllWalk walk_;
  double t_, dt_ = 0.0;  ///< s
  long steps_ = 0;
};

}  // namespace support
