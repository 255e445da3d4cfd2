// Which rank gets which cells, so that all have the same to do now, and as the water spreads.
#pragma once

#include <cstdint>
#include <vector>

#include "ranks/Squares.hpp"

namespace ranks {

/// The cells of all ranks, square by square.
struct CellsOfSquares {
  std::vector<int> all, busy;
};

/// What becomes of the squares, by number.
struct Deal {
  std::vector<int> owners;
  /// 0: where cells are busy; from there on by how far off these are.
  std::vector<std::uint8_t> bands;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.owners, self.bands);
  }
};

/// Every rank gets about as many cells of every band, in a run along a curve over the squares.
/// So where busy cells wake their neighbours, all ranks have some of these.
Deal deal_out_cells(const Squares& squares, const std::vector<int>& along_curve,
                    const CellsOfSquares& cells, int ranks);

/// How many cells of busy squares every rank gets; infinitely many for one that gets no cell, or so
/// many cells in all that its memory might not hold them.
std::vector<double> loads_of(const Deal& deal, const CellsOfSquares& cells, int ranks);

/// Largest over mean; 1 where there is nothing to do.
double imbalance_of(const std::vector<double>& loads);

}  // namespace ranks
