// What is said, once per run, of the coupled system of water and bed.
#pragma once

#include <string>

namespace utils {

/// In a cell of depth h (m) and unit discharges qx, qy (m2/s) it is not hyperbolic at time t (s).
std::string not_hyperbolic(int cell, double t, double h, double qx, double qy);

}  // namespace utils
