// Depths below zero, which the first scheme may leave: one rule for all exports and plots.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "export/Mesh.hpp"

namespace exports {

/// What lies below zero is dry. Of several times, that at which most is missing.
struct BelowZero {
  std::size_t cells = 0;
  double volume = 0.0;         ///< that the cells lack to zero, m3
  std::optional<double> time;  ///< s; none for the largest depths

  void add(const BelowZero& other);
  /// Warns, if there is anything to tell.
  void tell() const;
};

/// Depths down to it (m) are rounding, and not told.
inline constexpr double rounding_of_depth = -1e-9;

/// Sets depths of cells (m) that are below zero to zero, and tells what they lacked.
BelowZero dry_below_zero(const Mesh& mesh, std::optional<double> time, std::vector<double>& depths);

}  // namespace exports
