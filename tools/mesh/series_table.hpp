// The time series of a boundary, as a case or a table holds it.
#pragma once

#include <string>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"

namespace mesh_import {

struct ImposedSeries {
  cases::Series series;   // in s, and in m2/s, m3/s or m
  bool is_total = false;  // whether it is the discharge of the whole boundary, m3/s
};

/// Reads a series of a case, or a table with titles: a time and a value on every line, between
/// blanks, commas, semicolons or tabs, whose titles end in their units, as in "time [h], Q [m3/s]".
/// The unit must suit the kind of boundary. Throws tools::Error.
ImposedSeries read_boundary_series(const std::string& file, const cases::BoundaryKind& kind);

}  // namespace mesh_import
