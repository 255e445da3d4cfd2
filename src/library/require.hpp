// Checks of what a program gives the library.
#pragma once

#include <cmath>
#include <string>

#include "quillmere/simulation.hpp"
#include "utils/number_text.hpp"

namespace quillmere {

[[noreturn]] inline void refuse(const std::string& what, const std::string& found,
                                const std::string& expected) {
  throw Error(what + ": found " + found + ", expected " + expected + ".");
}

inline void require_count(const std::string& what, std::size_t found, std::size_t expected) {
  if (found == expected) return;
  refuse(what, std::to_string(found) + " values", std::to_string(expected));
}

inline void require_index(const std::string& what, int found, int limit) {
  if (found >= 0 && found < limit) return;
  refuse(what, std::to_string(found), "an index from 0 to " + std::to_string(limit - 1));
}

inline void require_finite(const std::string& what, double value) {
  if (!std::isfinite(value)) refuse(what, utils::number_text(value), "a finite number");
}

inline void require_positive_or_zero(const std::string& what, double value) {
  if (std::isfinite(value) && value >= 0.0) return;
  refuse(what, utils::number_text(value), "a finite number that is not negative");
}

}  // namespace quillmere
