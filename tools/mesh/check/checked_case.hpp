// A case as far as its files can be read.
#pragma once

#include "case/Case.hpp"

namespace tools::check {

/// A column whose file is absent or at fault is empty, and so are rain and soils. Time series have
/// the names of their files alone.
struct CheckedCase {
  cases::Case contents;
  /// Whether a file was read to its end without an error.
  bool has_nodes = false, has_cells = false, has_edges = false;

  bool has_geometry() const { return has_nodes && has_cells; }
  bool is_whole() const { return has_geometry() && has_edges; }
};

}  // namespace tools::check
