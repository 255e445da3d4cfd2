// What walks cell by cell steps a case as it is.
#pragma once

#include <stdexcept>

#include "engine/State.hpp"

namespace fields {

/// Throws std::runtime_error for the state of a simulation in which a caller imposed something.
inline void require_nothing_imposed(const engine::State& state) {
  if (state.imposed_on_boundaries.empty() && state.imposed_rain.empty()) return;
  throw std::runtime_error(
      "Error. The state holds rain or boundary values that a program imposed; only the tables can "
      "go "
      "on with it.");
}

}  // namespace fields
