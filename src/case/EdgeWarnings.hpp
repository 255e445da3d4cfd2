// Warnings about edges that are well-formed and probably wrong.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "case/Diagnostics.hpp"
#include "case/Mesh.hpp"
#include "case/edge_faults.hpp"
#include "utils/stop.hpp"

namespace cases {

/// What is probably wrong with an edge, or with the number of edges of a cell.
struct EdgeRemark {
  enum Kind { degenerate, inward, two_sided, odd_cell };
  static constexpr std::size_t kinds = 4;

  Kind kind;
  std::string text;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.kind, self.text);
  }
};

/// On an edge with these cells, and the boundary condition on it; null: none.
std::vector<EdgeRemark> remarks_on_edge(Number edge, const EdgeFaults& faults, Number left,
                                        Number right, const Boundary* boundary);
/// On a cell with a number of edges: none if it has as many as the scheme takes.
std::vector<EdgeRemark> remarks_on_edges_of_cell(Number cell, int edges);

class EdgeWarnings {
 public:
  explicit EdgeWarnings(Diagnostics& diagnostics);

  void add(const EdgeRemark& remark) { of(remark.kind).add(remark.text); }

  /// An edge of a mesh, which may still be growing, and the boundary condition on it; null: none.
  void check(const Mesh& mesh, Number edge, const Boundary* boundary);
  /// Looks at the cells of a mesh, once all edges are there.
  void check_numbers_of_edges(const Mesh& mesh);

 private:
  utils::RepeatedWarning& of(EdgeRemark::Kind kind);

  utils::RepeatedWarning degenerate_, inward_, two_sided_, odd_cells_;
};

}  // namespace cases
