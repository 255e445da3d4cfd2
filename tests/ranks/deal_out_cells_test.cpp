// Cells dealt out to ranks by where the water is.
#include "ranks/deal_out_cells.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <vector>

using ranks::CellsOfSquares;
using ranks::Deal;

namespace {

constexpr int columns = 80, rows = 40, of_square = 8;

std::vector<double> lines_between(int parts) {
  std::vector<double> lines(cases::at(parts - 1));
  std::iota(lines.begin(), lines.end(), 1.0);
  return lines;
}

const ranks::Squares squares(lines_between(columns), lines_between(rows));

/// As many cells in every square, on a level bed, and water where it is told, by column and row.
CellsOfSquares cells_with_water(const std::function<bool(int, int)>& is_wet) {
  CellsOfSquares cells;
  for (int square = 0; square < squares.count(); ++square) {
    cells.all.push_back(of_square);
    cells.busy.push_back(is_wet(square % columns, square / columns) ? 1 : 0);
    cells.surface.push_back(0.0);
  }
  return cells;
}

Deal deal_of(const CellsOfSquares& cells, int ranks) {
  return ranks::deal_out_cells(squares, squares.along_curve(), cells, ranks);
}

/// Cells of some squares that every rank has.
std::vector<int> counts_of(const Deal& deal, int ranks, const std::function<bool(int)>& counts) {
  std::vector<int> of_ranks(cases::at(ranks), 0);
  for (int square = 0; square < squares.count(); ++square) {
    if (counts(square)) of_ranks[cases::at(deal.owners[cases::at(square)])] += of_square;
  }
  return of_ranks;
}

void expect_even(const std::vector<int>& counts) {
  const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
  EXPECT_LE(*most - *least, of_square);
}

}  // namespace

TEST(DealOutCells, GivesEveryRankAsMuchWaterAndAsManyCells) {
  const CellsOfSquares cells = cells_with_water([](int column, int) { return column < 10; });
  for (const int ranks : {1, 3, 7, 16}) {
    const Deal deal = deal_of(cells, ranks);
    expect_even(counts_of(deal, ranks, [&](int square) { return square % columns < 10; }));
    const std::vector<int> all = counts_of(deal, ranks, [](int) { return true; });
    for (const int count : all) {
      EXPECT_NEAR(count, of_square * squares.count() / ranks, 9 * of_square) << ranks;
    }
    EXPECT_LT(ranks::imbalance_of(ranks::loads_of(deal, cells, ranks)), 1.05) << ranks;
  }
}

TEST(DealOutCells, GivesEveryRankAShareOfWhatTheWaterReachesNext) {
  constexpr int ranks = 8;
  const Deal deal = deal_of(cells_with_water([](int column, int) { return column < 10; }), ranks);
  for (int band = 1; band < 8; ++band) {
    expect_even(
        counts_of(deal, ranks, [&](int square) { return deal.bands[cases::at(square)] == band; }));
  }
  for (int row = 0; row < rows; ++row) {
    const auto begin = deal.bands.begin() + row * columns;
    EXPECT_TRUE(std::is_sorted(begin, begin + columns)) << row;
    EXPECT_EQ(begin[9], 0) << row;
    EXPECT_EQ(begin[10], 1) << row;
  }
  EXPECT_EQ(deal.bands[columns - 1], 8);
}

TEST(DealOutCells, ExpectsWaterLaterWhereItWouldHaveToClimb) {
  constexpr int ranks = 8;
  // The bed rises above the water by 10 cm per square in the lower half of the rows.
  CellsOfSquares cells = cells_with_water([](int column, int) { return column < 10; });
  const auto column_of = [](int square) { return square % columns; };
  const auto is_low = [](int square) { return square / columns < rows / 2; };
  for (int square = 0; square < squares.count(); ++square) {
    const int beyond = column_of(square) - 9;
    if (is_low(square) && beyond > 0) cells.surface[cases::at(square)] = 0.1 * beyond * of_square;
  }
  const Deal deal = deal_of(cells, ranks);
  const auto band = [&](int column, int row) {
    return deal.bands[cases::at(row * columns + column)];
  };
  EXPECT_EQ(band(13, rows - 1), 2);  // four columns of 20 squares are more than a band
  EXPECT_GT(band(13, 0), 2);
  EXPECT_LT(band(20, rows - 1), band(20, 0));
  // The ranks share what comes first evenly.
  expect_even(
      counts_of(deal, ranks, [&](int square) { return deal.bands[cases::at(square)] == 1; }));
}

TEST(DealOutCells, GoesRoundWhatWaterDoesNotClimb) {
  // A ridge of 10 m with a gap at the upper end.
  CellsOfSquares cells = cells_with_water([](int column, int) { return column < 10; });
  for (int row = 0; row < rows - 2; ++row) {
    cells.surface[cases::at(row * columns + 12)] = 10.0 * of_square;
  }
  const Deal deal = deal_of(cells, 8);
  const auto band = [&](int column, int row) {
    return deal.bands[cases::at(row * columns + column)];
  };
  EXPECT_LT(band(14, rows - 1), band(14, 0));
}

TEST(DealOutCells, TakesSquaresWithoutCellsForLevel) {
  CellsOfSquares cells = cells_with_water([](int column, int) { return column < 10; });
  for (int row = 0; row < rows; ++row) cells.all[cases::at(row * columns + 10)] = 0;
  const Deal deal = deal_of(cells, 8);
  EXPECT_EQ(deal.bands[columns * 5 + 11], 1);
  EXPECT_EQ(deal.bands[columns * 5 + 12], 1);
  EXPECT_EQ(deal.bands[columns * 5 + 79], 8);
}

TEST(DealOutCells, LeavesRunsWhereAllIsAlike) {
  for (const bool is_wet : {false, true}) {
    const CellsOfSquares cells = cells_with_water([&](int, int) { return is_wet; });
    const Deal deal = deal_of(cells, 5);
    expect_even(counts_of(deal, 5, [](int) { return true; }));
    int owner = 0;
    for (const int square : squares.along_curve()) {
      EXPECT_GE(deal.owners[cases::at(square)], owner);
      owner = deal.owners[cases::at(square)];
    }
    EXPECT_EQ(*std::max_element(deal.bands.begin(), deal.bands.end()), 0);
  }
}

TEST(DealOutCells, IsWorthNothingWhereARankWouldHaveNoCell) {
  const ranks::Squares two({1.0}, {});
  const CellsOfSquares cells = {{5, 4}, {5, 0}, {0.0, 0.0}};
  const Deal deal = ranks::deal_out_cells(two, two.along_curve(), cells, 3);
  EXPECT_EQ(ranks::imbalance_of(ranks::loads_of(deal, cells, 3)), HUGE_VAL);
}

TEST(LoadsOf, AreTooManyWhereARankWouldHaveManyTimesTheMean) {
  const CellsOfSquares cells = {{5, 5, 90, 5, 5}, {5, 5, 0, 5, 5}, {}};
  const Deal even{{0, 1, 2, 3, 4}, {}};
  EXPECT_EQ(ranks::loads_of(even, cells, 5), (std::vector<double>{5, 5, HUGE_VAL, 5, 5}));
}

TEST(ImbalanceOf, IsTheLargestLoadOverTheMean) {
  EXPECT_DOUBLE_EQ(ranks::imbalance_of({1.0, 3.0, 2.0}), 1.5);
  EXPECT_EQ(ranks::imbalance_of({0.0, 0.0}), 1.0);
}
