// How many there are of something, or which may be meant, for messages.
#pragma once

#include <concepts>
#include <string>
#include <vector>

namespace utils {

/// "1 edge", "3 edges".
std::string counted(std::integral auto count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// "a", "a or b", "a, b or c" of one or more.
inline std::string alternatives(const std::vector<std::string>& names) {
  std::string text = names.front();
  for (std::size_t i = 1; i < names.size(); ++i) {
    text += (i + 1 < names.size() ? ", " : " or ") + names[i];
  }
  return text;
}

}  // namespace utils
