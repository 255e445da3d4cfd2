// What a misspelt or misplaced key of the data file was meant to be.
#pragma once

#include <string>

#include "case/keys.hpp"

namespace cases {

/// The key that a name in a section resembles most, of two alike that of the same section; null if
/// it resembles none.
const Key* nearest_key(const std::string& section, const std::string& name);

}  // namespace cases
