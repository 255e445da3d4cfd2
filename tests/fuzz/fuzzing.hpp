// What fuzzers share: a run that ends early throws instead of ending the process.
#pragma once

#include <iostream>
#include <string>

#include "utils/stop.hpp"

namespace fuzzing {

struct Stopped {
  int status;
};

/// To be called once, before the first input. The messages, one per input, are not shown.
inline void start() {
  utils::set_stop_handler([](int status, const std::string&) { throw Stopped{status}; });
  std::cout.setstate(std::ios::failbit);
  std::cerr.setstate(std::ios::failbit);
}

}  // namespace fuzzing
