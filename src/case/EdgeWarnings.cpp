#include "case/EdgeWarnings.hpp"

#include <string>
#include <vector>

#include "case/edge_faults.hpp"

namespace cases {

namespace {

std::string name_of(Number edge) { return "edge " + std::to_string(edge) + " (counted from 0)"; }

}  // namespace

EdgeWarnings::EdgeWarnings(const Mesh& mesh, Diagnostics& diagnostics)
    : mesh_(mesh),
      degenerate_("edges without length.", [&](const auto& text) { diagnostics.warn(text); }),
      inward_("edges whose normal points into their left cell.",
              [&](const auto& text) { diagnostics.warn(text); }),
      two_sided_("edges with a boundary code and a right cell.",
                 [&](const auto& text) { diagnostics.warn(text); }),
      sink_([&](const auto& text) { diagnostics.warn(text); }) {}

void EdgeWarnings::check(Number edge, const Boundary* boundary) {
  const EdgeFaults faults = faults_of(mesh_, edge, boundary);
  if (faults.has_no_length) {
    degenerate_.add(name_of(edge) + " has no length: its flux is not a number.");
  }
  if (faults.points_inwards) {
    inward_.add(name_of(edge) + " has a normal that points into its left cell " +
                std::to_string(mesh_.left[at(edge)]) + "; list its two nodes the other way round.");
  }
  if (faults.is_two_sided) {
    two_sided_.add(name_of(edge) + " has the boundary code " + std::to_string(boundary->code) +
                   " and also a right cell " + std::to_string(mesh_.right[at(edge)]) +
                   ", which gets no flux through it.");
  }
}

void EdgeWarnings::check_numbers_of_edges() {
  constexpr int expected = 3;
  std::vector<int> counts(at(mesh_.n_cells()), 0);
  for (Number edge = 0; edge < mesh_.n_edges(); ++edge) {
    ++counts[at(mesh_.left[at(edge)])];
    if (mesh_.right[at(edge)] >= 0) ++counts[at(mesh_.right[at(edge)])];
  }
  utils::RepeatedWarning odd("cells with other than three edges.", sink_);
  for (std::size_t cell = 0; cell < counts.size(); ++cell) {
    if (counts[cell] == expected) continue;
    odd.add("cell " + std::to_string(cell) + " (counted from 0) has " +
            std::to_string(counts[cell]) + " edges; the scheme takes the first three of a cell.");
  }
}

}  // namespace cases
