// Reads the first value of a file, for tests of what a scanner accepts.
#pragma once

#include <string>

#include "utils/TextScanner.hpp"

inline void read_number_from(const std::string& path) {
  utils::TextScanner(path).read_number("value");
}
inline void read_integer_from(const std::string& path) {
  utils::TextScanner(path).read_integer("value");
}
