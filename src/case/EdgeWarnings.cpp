#include "case/EdgeWarnings.hpp"

namespace cases {

namespace {

std::string name_of(Number edge) { return "edge " + std::to_string(edge) + " (counted from 0)"; }

}  // namespace

std::vector<EdgeRemark> remarks_on_edge(Number edge, const EdgeFaults& faults, Number left,
                                        Number right, const Boundary* boundary) {
  std::vector<EdgeRemark> remarks;
  if (faults.has_no_length) {
    remarks.push_back(
        {EdgeRemark::degenerate, name_of(edge) + " has no length: its flux is not a number."});
  }
  if (faults.points_inwards) {
    remarks.push_back({EdgeRemark::inward,
                       name_of(edge) + " has a normal that points into its left cell " +
                           std::to_string(left) + "; list its two nodes the other way round."});
  }
  if (faults.is_two_sided) {
    remarks.push_back(
        {EdgeRemark::two_sided, name_of(edge) + " has the boundary code " +
                                    std::to_string(boundary->code) + " and also a right cell " +
                                    std::to_string(right) + ", which gets no flux through it."});
  }
  return remarks;
}

std::vector<EdgeRemark> remarks_on_edges_of_cell(Number cell, int edges) {
  constexpr int expected = 3;
  if (edges == expected) return {};
  return {{EdgeRemark::odd_cell, "cell " + std::to_string(cell) + " (counted from 0) has " +
                                     std::to_string(edges) +
                                     " edges; the scheme takes the first three of a cell."}};
}

EdgeWarnings::EdgeWarnings(Diagnostics& diagnostics)
    : degenerate_("edges without length.", [&](const auto& text) { diagnostics.warn(text); }),
      inward_("edges whose normal points into their left cell.",
              [&](const auto& text) { diagnostics.warn(text); }),
      two_sided_("edges with a boundary code and a right cell.",
                 [&](const auto& text) { diagnostics.warn(text); }),
      odd_cells_("cells with other than three edges.",
                 [&](const auto& text) { diagnostics.warn(text); }) {}

utils::RepeatedWarning& EdgeWarnings::of(EdgeRemark::Kind kind) {
  switch (kind) {
    case EdgeRemark::degenerate:
      return degenerate_;
    case EdgeRemark::inward:
      return inward_;
    case EdgeRemark::two_sided:
      return two_sided_;
    default:
      return odd_cells_;
  }
}

void EdgeWarnings::check(const Mesh& mesh, Number edge, const Boundary* boundary) {
  for (const EdgeRemark& remark :
       remarks_on_edge(edge, faults_of(mesh, edge, boundary), mesh.left[at(edge)],
                       mesh.right[at(edge)], boundary)) {
    add(remark);
  }
}

void EdgeWarnings::check_numbers_of_edges(const Mesh& mesh) {
  std::vector<int> counts(at(mesh.n_cells()), 0);
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    ++counts[at(mesh.left[at(edge)])];
    if (mesh.right[at(edge)] >= 0) ++counts[at(mesh.right[at(edge)])];
  }
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    for (const EdgeRemark& remark : remarks_on_edges_of_cell(cell, counts[at(cell)])) add(remark);
  }
}

}  // namespace cases
