// Rows of files over ranks: every rank has a block of consecutive rows, whoever computes their
// cells.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "ranks/Group.hpp"

namespace ranks {

/// Consecutive rows of a file, one per cell, in the order of the cells.
struct RowBlock {
  cases::Number first = 0, count = 0;
};

/// That of a rank; blocks of all ranks follow each other and are as long but for one row.
inline RowBlock rows_of(int rank, int ranks, cases::Number cells) {
  const auto begin = [&](int r) {
    return static_cast<cases::Number>(std::int64_t{cells} * r / ranks);
  };
  return {begin(rank), begin(rank + 1) - begin(rank)};
}

/// Which values go from the ranks of the cells to those of the rows. Every function is called on
/// all ranks.
class RowPlan {
 public:
  /// `own`: the numbers of the cells that this rank computes, ascending.
  RowPlan(std::span<const cases::Number> own, Group& group);

  std::size_t rows() const { return static_cast<std::size_t>(rows_.count); }
  /// Of all ranks.
  cases::Number rows_of_all() const { return rows_of_all_; }

  /// From a column over the own cells to that over the own rows.
  void send(std::span<const double> of_cells, std::span<double> of_rows, Group& group) const;
  /// The way back.
  void send_back(std::span<const double> of_rows, std::span<double> of_cells, Group& group) const;

 private:
  struct Run {
    int rank;
    std::size_t first, count;  ///< of the own cells
  };
  struct Rows {
    int rank;
    std::vector<cases::Number> rows;  ///< within the block
  };

  cases::Number rows_of_all_;
  RowBlock rows_;
  std::vector<Run> to_;     ///< who has rows of own cells
  std::vector<Rows> from_;  ///< who has the cells of own rows, ascending
};

}  // namespace ranks
