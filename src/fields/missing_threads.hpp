// What is said where the system gives fewer threads than a run wants.
#pragma once

#include <string>

#include "case/Diagnostics.hpp"

namespace fields {

inline void warn_of_missing_threads(int got, int wanted, cases::Diagnostics& diagnostics) {
  if (got == wanted) return;
  diagnostics.warn("the system gives " + std::to_string(got) + " of " + std::to_string(wanted) +
                   " threads: the run is slower, its results stay the same.");
}

}  // namespace fields
