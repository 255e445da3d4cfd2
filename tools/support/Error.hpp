// How a companion program says what is wrong.
#pragma once

#include "utils/stop.hpp"

namespace tools {

/// A reason to end with status 1: the file, the place in it, what was found and what is expected.
/// The simulator's readers throw it too.
using Error = utils::FatalError;

}  // namespace tools
