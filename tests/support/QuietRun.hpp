// What a run is given whose log and console nobody reads.
#pragma once

#include <sstream>

#include "domain/Domain.hpp"

namespace support {

struct QuietRun {
  std::ostringstream log, out;
  utils::Console console{out};
  RunSettings settings{log, console};
};

}  // namespace support
