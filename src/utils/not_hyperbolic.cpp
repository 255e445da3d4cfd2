#include "utils/not_hyperbolic.hpp"

#include <cmath>

#include "utils/number_text.hpp"

namespace utils {

std::string not_hyperbolic(int cell, double t, double h, double qx, double qy) {
  return "in cell " + std::to_string(cell) + " (counted from 0) at t = " + number_text(t) +
         " s, with depth " + number_text(h) + " m and velocity " +
         number_text(std::hypot(qx, qy) / h) +
         " m/s, the bed wave is outside the range in which the coupled system of water and "
         "bed is hyperbolic; the bed is left out of the wave speeds there. This is said once.";
}

}  // namespace utils
