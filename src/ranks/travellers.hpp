// What ranks send each other of a mesh, by numbers in the whole case.
#pragma once

#include <vector>

#include "case/Case.hpp"
#include "case/entries_of.hpp"

namespace ranks {

/// An edge with all that belongs to it.
struct TravellingEdge {
  cases::Number number, left, right, node1, node2;
  int left_owner, right_owner;  ///< ranks that own the cells; -1 without a right cell
  cases::Number boundary;       ///< number of its boundary condition; -1: none, and nothing follows
  cases::Boundary condition;    ///< names it by its number in the whole case

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.number, self.left, self.right, self.node1, self.node2, self.left_owner,
          self.right_owner, self.boundary, self.condition);
  }
};

/// Cells with their nodes and fields.
struct TravellingCells {
  std::vector<cases::Number> numbers;
  cases::Mesh cells;  ///< nothing but cells and nodes by number
  cases::CellFields fields;

  void add(const TravellingCells& next) {
    numbers.insert(numbers.end(), next.numbers.begin(), next.numbers.end());
    for (cases::Number k = 0; k < next.cells.n_cells(); ++k) cells.add_cell(next.cells.nodes_of(k));
    cases::CellFields::visit_parts(next.fields, [&](const auto&... of_next) {
      cases::CellFields::visit_parts(fields, [&](auto&... of_this) {
        (of_this.insert(of_this.end(), of_next.begin(), of_next.end()), ...);
      });
    });
  }
  /// Those at some places.
  TravellingCells at_places(const std::vector<cases::Number>& places) const {
    TravellingCells some;
    some.numbers = cases::entries_of(numbers, places);
    for (const cases::Number place : places) {
      some.cells.add_cell(cells.nodes_of(place));
    }
    cases::CellFields::visit_parts(fields, [&](const auto&... of_this) {
      cases::CellFields::visit_parts(some.fields, [&](auto&... of_some) {
        ((of_some = cases::entries_of(of_this, places)), ...);
      });
    });
    return some;
  }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.numbers, self.cells, self.fields);
  }
};

}  // namespace ranks
