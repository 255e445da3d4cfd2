// Which rank gets which cells, so that all have the same to do now, and as the water spreads.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/aligned_vector.hpp"
#include "ranks/Squares.hpp"

namespace ranks {

/// The cells of all ranks, square by square.
struct CellsOfSquares {
  std::vector<int> all, busy;
  /// The sums of the levels of their surfaces, of the water or, where there is none, the bed, m.
  std::vector<double> surface;

  double mean_surface(int square) const {
    return surface[engine::at(square)] / all[engine::at(square)];
  }
};

/// What becomes of the squares, by number.
struct Deal {
  std::vector<int> owners;
  /// 0: where cells are busy; from there on in the order in which water is expected.
  std::vector<std::uint8_t> bands;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.owners, self.bands);
  }
};

/// Every rank gets about as many cells of every band, in a run along a curve over the squares.
/// So as busy cells wake others, all ranks have some of these. Water is expected first where the
/// way from busy squares is short, and climbs little above their surface.
Deal deal_out_cells(const Squares& squares, const std::vector<int>& along_curve,
                    const CellsOfSquares& cells, int ranks);

/// How many cells of busy squares every rank gets; infinitely many for one that gets no cell, or so
/// many cells in all that its memory might not hold them.
std::vector<double> loads_of(const Deal& deal, const CellsOfSquares& cells, int ranks);

/// Largest over mean; 1 where there is nothing to do.
double imbalance_of(const std::vector<double>& loads);

}  // namespace ranks
