// What fuzzers share.
#pragma once

#include <iostream>
#include <string>

#include "utils/stop.hpp"

namespace fuzzing {

/// To be called once, before the first input. The messages, one per input, are not shown.
inline void start() {
  std::cout.setstate(std::ios::failbit);
  std::cerr.setstate(std::ios::failbit);
}

}  // namespace fuzzing
