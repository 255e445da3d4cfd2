// Rain that does not change in time, as the command line gives it.
#pragma once

#include <string>

namespace mesh_import {

struct SteadyRain {
  std::string target;      // "forest=" for a named surface, or empty
  double intensity = 0.0;  // m/s
};

/// Whether a request of --rain gives an intensity, as in 20mm/h or forest=20mm/h, and no ID.
bool is_steady_rain(const std::string& request);

/// That intensity; of a request that gives one.
SteadyRain steady_rain(const std::string& request);

}  // namespace mesh_import
