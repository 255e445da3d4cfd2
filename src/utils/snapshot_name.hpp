// The name that a snapshot's file bears.
#pragma once

#include <string>

namespace utils {

/// pic_12_50.txt for 12.5 s: two decimals, cut off, not rounded.
inline std::string snapshot_name(double time) {
  std::string text = std::to_string(time);
  const auto point = text.find('.');
  return "pic_" + text.replace(point, 1, "_").substr(0, point + 3) + ".txt";
}

}  // namespace utils
