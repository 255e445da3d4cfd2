// The part of a case that one of several ranks computes: its own cells, and rings of cells of
// others around them, which it reads. It is a case in numbers of its own, so that no rank needs
// arrays of the size of the whole mesh.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "case/Case.hpp"

namespace cases {

/// What the rule of the time step asks of a whole case.
struct CaseScales {
  double h0 = 0.0;               ///< largest initial depth, m
  double char_length_min = 0.0;  ///< smallest characteristic length of a cell, m

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.h0, self.char_length_min);
  }
};

CaseScales scales_of(const Case& contents);

/// How far a scheme looks across the rim of its cells: that of second order computes edge states of
/// neighbours anew, from the neighbours of these. The others take no slopes of a neighbour, which
/// in the last ring would lack what lies beyond it.
constexpr int rings_of(Scheme scheme) { return scheme == Scheme::hll2 ? 2 : 1; }

/// `contents` holds the own cells, ascending by their numbers in the whole case, then the ghosts,
/// likewise; the edges whose cells (one, or two) are all among them, and the nodes of cells and
/// edges, ascending; boundaries of these edges; series, rain and soils as they are. All edges of
/// the own cells are there, and of a ghost in all rings but the last; what lies at the outer sides
/// of the last ring is nobody's concern.
struct Part {
  Case contents;
  Number owned = 0;                     ///< how many cells are its own
  std::vector<Number> cell_number;      ///< in the whole case, of each cell
  std::vector<Number> edge_number;      ///< the same of the edges
  std::vector<Number> node_number;      ///< the same of the nodes
  std::vector<Number> boundary_number;  ///< the same of mesh.boundaries
  std::vector<Number> border;           ///< own cells that are ghosts of others, in its own numbers
  CaseScales scales;                    ///< of the whole case
  /// Of the own cells: those of a lower band come first in the tables, as they are likely to take
  /// part in steps together. Empty: all are alike.
  std::vector<std::uint8_t> band;

  Number ghosts() const { return static_cast<Number>(cell_number.size()) - owned; }
  /// The own cell that has a number in the whole case; -1: another part has it.
  Number own_cell(Number number) const {
    const auto end = cell_number.begin() + owned;
    const auto found = std::lower_bound(cell_number.begin(), end, number);
    return found != end && *found == number ? static_cast<Number>(found - cell_number.begin()) : -1;
  }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.contents, self.owned, self.cell_number, self.edge_number, self.node_number,
          self.boundary_number, self.border, self.scales, self.band);
  }
};

}  // namespace cases
