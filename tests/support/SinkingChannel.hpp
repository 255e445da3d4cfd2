// An exact unsteady solution with bed load after Meyer-Peter and Muller and Manning friction: depth
// and velocity are steady, and the whole bed sinks at one rate, because the transport grows
// linearly along the channel. It extends that of Berthon, Cordier, Delestre and Le (2012), C. R.
// Math. 350, to this transport law.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace support {

/// The sinking channel: transport beta + alpha x over a length L.
class SinkingChannel {
 public:
  static constexpr double L = 100.0, q = 2.0, d = 0.005, s = 2.65, n = 0.025, porosity = 0.4;
  static constexpr double beta = 1e-4, alpha = 4e-6, g = 9.81;

  SinkingChannel() : bed_(intervals + 1, 0.0) {
    const double dx = L / intervals;
    for (int i = intervals - 1; i >= 0; --i) {
      const double x = i * dx;
      const auto k = static_cast<std::size_t>(i);
      bed_[k] = bed_[k + 1] + head(x + dx) - head(x) + 0.5 * dx * (slope(x) + slope(x + dx));
    }
  }

  double h(double x) const { return q / u(x); }
  double bed(double x, double t) const {
    const double place = x / L * intervals;
    const int i = std::min(static_cast<int>(place), intervals - 1);
    const auto k = static_cast<std::size_t>(i);
    return bed_[k] + (place - i) * (bed_[k + 1] - bed_[k]) - sunk(t);
  }
  static double sunk(double t) { return alpha * t / (1.0 - porosity); }

 private:
  static constexpr int intervals = 20000;

  double theta(double x) const {
    const double unit = 8.0 * std::sqrt((s - 1.0) * g * d * d * d);
    return 0.047 + std::pow((beta + alpha * x) / unit, 2.0 / 3.0);
  }
  double u(double x) const {
    return std::pow(theta(x) * (s - 1.0) * d * std::cbrt(q) / (n * n), 3.0 / 7.0);
  }
  double head(double x) const { return u(x) * u(x) / (2.0 * g) + h(x); }
  double slope(double x) const {
    return n * n * std::pow(u(x), 10.0 / 3.0) / std::pow(q, 4.0 / 3.0);
  }

  std::vector<double> bed_;
};

}  // namespace support
