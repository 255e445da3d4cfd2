// How many there are of something, for messages.
#pragma once

#include <concepts>
#include <string>

namespace utils {

/// "1 edge", "3 edges".
std::string counted(std::integral auto count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace utils
