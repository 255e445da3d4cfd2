#include "ranks/deal_out_cells.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <queue>

namespace ranks {

using engine::at;

namespace {

/// A band has such a share of all cells; or more, so that a rank can make a patch of its part.
constexpr int share_of_band = 64, least_of_rank = 16;
/// The last one holds whatever is farther off: each has a rim, across which ranks send states.
constexpr std::uint8_t last_band = 8;
/// By how far water comes along a level bed until it climbs a metre.
constexpr double way_of_climb = 40.0;

double distance(const physics::PlanPoint& a, const physics::PlanPoint& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

/// Finds bands, from busy squares outwards.
class BandFinder {
 public:
  BandFinder(const Squares& squares, const CellsOfSquares& cells, int ranks)
      : squares_(squares), cells_(cells), bands_(at(squares.count()), not_found) {
    const std::int64_t all = std::accumulate(cells_.all.begin(), cells_.all.end(), std::int64_t{0});
    enough_ = std::max(all / share_of_band, std::int64_t{least_of_rank} * ranks);
  }

  std::vector<std::uint8_t> find() {
    for (int square = 0; square < squares_.count(); ++square) {
      if (is_busy(square)) reached_.push({0.0, square, cells_.mean_surface(square)});
    }
    const std::uint8_t rest = reached_.empty() ? 0 : last_band;
    while (!reached_.empty() && band_ < last_band) {
      const Reached next = reached_.top();
      reached_.pop();
      if (bands_[at(next.square)] == not_found) take(next);
    }
    std::replace(bands_.begin(), bands_.end(), not_found, rest);
    return std::move(bands_);
  }

 private:
  static constexpr std::uint8_t not_found = 255;

  /// A square to which water may come.
  struct Reached {
    double way;  ///< that it has come then, m
    int square;
    double surface;  ///< m; of one without cells that of the one before
    friend bool operator<(const Reached& a, const Reached& b) {  // the shortest way is the top
      return a.way != b.way ? a.way > b.way : a.square > b.square;
    }
  };

  bool is_busy(int square) const { return cells_.busy[at(square)] > 0; }

  void take(const Reached& reached) {
    const int square = reached.square;
    bands_[at(square)] = is_busy(square) ? 0 : band_;
    if (!is_busy(square)) in_band_ += cells_.all[at(square)];
    if (in_band_ >= enough_) {
      ++band_;
      in_band_ = 0;
    }
    const int row = square / squares_.columns(), column = square % squares_.columns();
    for (int r = std::max(0, row - 1); r <= std::min(squares_.rows() - 1, row + 1); ++r) {
      for (int c = std::max(0, column - 1); c <= std::min(squares_.columns() - 1, column + 1);
           ++c) {
        go_on(reached, r * squares_.columns() + c);
      }
    }
  }

  void go_on(const Reached& from, int square) {
    if (bands_[at(square)] != not_found || is_busy(square)) return;
    const double surface = cells_.all[at(square)] > 0 ? cells_.mean_surface(square) : from.surface;
    const double way = distance(squares_.center(from.square), squares_.center(square));
    const double climb = std::max(0.0, surface - from.surface);
    reached_.push({from.way + way + way_of_climb * climb, square, surface});
  }

  const Squares& squares_;
  const CellsOfSquares& cells_;
  std::int64_t enough_, in_band_ = 0;
  std::uint8_t band_ = 1;
  std::vector<std::uint8_t> bands_;
  std::priority_queue<Reached> reached_;
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
