#include "ranks/deal_out_cells.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ranks {

using engine::at;

namespace {

/// A band has such a share of all cells; or more, so that a rank can make a patch of its part.
constexpr int share_of_band = 64, least_of_rank = 64;
/// The last one holds whatever is farther off: each has a rim, across which ranks send states.
constexpr int last_band = 8;

/// Finds bands, from busy squares outwards.
class BandFinder {
 public:
  BandFinder(const Squares& squares, const CellsOfSquares& cells, int ranks)
      : squares_(squares), cells_(cells), ranks_(ranks), bands_(at(squares.count()), not_found) {}

  std::vector<std::uint8_t> find() {
    std::vector<int> ring;
    for (int square = 0; square < squares_.count(); ++square) {
      if (cells_.busy[at(square)] > 0) take(square, 0, ring);
    }
    const std::int64_t all = std::accumulate(cells_.all.begin(), cells_.all.end(), std::int64_t{0});
    const std::int64_t enough = std::max(all / share_of_band, std::int64_t{least_of_rank} * ranks_);
    int band = 1;
    std::int64_t in_band = 0;
    while (!ring.empty()) {
      if (in_band >= enough && band < last_band) {
        ++band;
        in_band = 0;
      }
      ring = next_ring(ring, static_cast<std::uint8_t>(band));
      for (const int square : ring) in_band += cells_.all[at(square)];
    }
    for (std::uint8_t& of_square : bands_) {
      if (of_square == not_found) of_square = 0;  // nothing is busy
    }
    return std::move(bands_);
  }

 private:
  static constexpr std::uint8_t not_found = 255;

  void take(int square, std::uint8_t band, std::vector<int>& ring) {
    if (bands_[at(square)] != not_found) return;
    bands_[at(square)] = band;
    ring.push_back(square);
  }

  std::vector<int> next_ring(const std::vector<int>& ring, std::uint8_t band) {
    std::vector<int> next;
    for (const int square : ring) {
      const int row = square / squares_.columns(), column = square % squares_.columns();
      for (int r = std::max(0, row - 1); r <= std::min(squares_.rows() - 1, row + 1); ++r) {
        for (int c = std::max(0, column - 1); c <= std::min(squares_.columns() - 1, column + 1);
             ++c) {
          take(r * squares_.columns() + c, band, next);
        }
      }
    }
    return next;
  }

  const Squares& squares_;
  const CellsOfSquares& cells_;
  int ranks_;
  std::vector<std::uint8_t> bands_;
};

}  // namespace

Deal deal_out_cells(const Squares& squares, const std::vector<int>& along_curve,
                    const CellsOfSquares& cells, int ranks) {
  Deal deal{{}, BandFinder(squares, cells, ranks).find()};
  std::vector<double> in_bands(at(last_band) + 1, 0.0), before(at(last_band) + 1, 0.0);
  for (std::size_t k = 0; k < cells.all.size(); ++k) in_bands[deal.bands[k]] += cells.all[k];
  deal.owners.resize(cells.all.size());
  for (const int square : along_curve) {
    const std::size_t band = deal.bands[at(square)];
    const double count = cells.all[at(square)];
    const double place = (before[band] + 0.5 * count) / std::max(1.0, in_bands[band]);
    deal.owners[at(square)] = std::min(ranks - 1, static_cast<int>(place * ranks));
    before[band] += count;
  }
  return deal;
}

std::vector<double> loads_of(const Deal& deal, const CellsOfSquares& cells, int ranks) {
  std::vector<double> loads(at(ranks), 0.0);
  std::vector<int> all(at(ranks), 0);
  for (std::size_t square = 0; square < cells.all.size(); ++square) {
    const std::size_t owner = at(deal.owners[square]);
    all[owner] += cells.all[square];
    if (cells.busy[square] > 0) loads[owner] += cells.all[square];
  }
  constexpr double most = 3.0;  // of the mean
  const double mean = std::accumulate(all.begin(), all.end(), 0.0) / ranks;
  for (std::size_t rank = 0; rank < all.size(); ++rank) {
    if (all[rank] == 0 || all[rank] > most * mean) loads[rank] = HUGE_VAL;
  }
  return loads;
}

double imbalance_of(const std::vector<double>& loads) {
  const double sum = std::accumulate(loads.begin(), loads.end(), 0.0);
  const double largest = *std::max_element(loads.begin(), loads.end());
  if (largest == HUGE_VAL) return HUGE_VAL;
  return sum > 0.0 ? largest * static_cast<double>(loads.size()) / sum : 1.0;
}

}  // namespace ranks
