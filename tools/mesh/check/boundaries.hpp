// The boundaries of a case, edge by edge and as a table.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"
#include "interfaces/TimeSeries.hpp"
#include "mesh/check/cell_values.hpp"
#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// All edges of one code and name with one imposed value or series; those over which one discharge
/// is spread count as one boundary.
struct Boundary {
  const cases::BoundaryKind* kind = nullptr;
  std::string name;    ///< that the case gives it; empty without one
  std::string series;  ///< file of its series, or of the first one; empty without one
  long edges = 0;
  double length = 0.0;  ///< m
  bool has_value = false;
  double first_value = 0.0;                  ///< at the start: m2/s (on the mean) or m
  std::shared_ptr<const TimeSeries> values;  ///< null without a readable series
  double lowest_bed = 1e20;                  ///< of its cells, m
  double shallowest_water = 1e20;            ///< of its cells at the start, m

  /// What passes at the start (m3/s, positive outwards), for a discharge.
  double discharge() const { return first_value * length; }
};

/// The table of boundaries, and reports of series that can't be read or do not cover the run, and
/// of implausible values. The mesh must be whole.
std::vector<Boundary> check_boundaries(const DataFile& data, const cases::Case& contents,
                                       const std::vector<CellValues>& cells, Findings& findings);

/// Reads every series that the edges name, for a mesh that is not whole.
void check_series_files(const cases::Case& contents, Findings& findings);

}  // namespace tools::check
