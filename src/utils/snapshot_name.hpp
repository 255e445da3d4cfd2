// The name that a snapshot's file bears.
#pragma once

#include <string>

#include "utils/number_text.hpp"

namespace utils {

/// pic_12_50.txt for 12.5 s: two decimals, cut off, not rounded.
inline std::string snapshot_name(double time) {
  std::string text = fixed_text(time, 6);
  const auto point = text.find('.');
  return "pic_" + text.replace(point, 1, "_").substr(0, point + 3) + ".txt";
}

}  // namespace utils
