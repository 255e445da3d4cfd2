// Warnings about edges that are well-formed and probably wrong.
#pragma once

#include "case/Diagnostics.hpp"
#include "case/Mesh.hpp"
#include "utils/stop.hpp"

namespace cases {

class EdgeWarnings {
 public:
  /// The mesh may still be growing.
  EdgeWarnings(const Mesh& mesh, Diagnostics& diagnostics);

  /// An edge, and the boundary condition on it; null: none.
  void check(Number edge, const Boundary* boundary);
  /// Looks at the cells, once all edges are there.
  void check_numbers_of_edges();

 private:
  const Mesh& mesh_;
  utils::RepeatedWarning degenerate_, inward_, two_sided_;
  utils::RepeatedWarning::Sink sink_;
};

}  // namespace cases
