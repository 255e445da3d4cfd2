// Values of cells come to the ranks of their rows, whoever computes them.
#include "ranks/RowPlan.hpp"

#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "ranks/DelayedGroup.hpp"
#include "ranks/InProcess.hpp"

namespace {

using cases::Number;
using engine::at;

/// The cells of every rank in any manner: most of one may be nobody's rows but its own.
std::vector<std::vector<Number>> any_cells(int ranks, Number cells, unsigned seed) {
  std::mt19937 generator(seed);
  std::vector<std::vector<Number>> of_ranks(at(ranks));
  for (Number cell = 0; cell < cells; ++cell) {
    const auto rank =
        generator() % 3 == 0 ? generator() % of_ranks.size() : at(cell * ranks / cells);
    of_ranks[rank].push_back(cell);
  }
  return of_ranks;
}

void expect_rows(ranks::Group& group, const std::vector<Number>& own, Number cells) {
  const ranks::RowPlan plan(own, group);
  const ranks::RowBlock block = ranks::rows_of(group.rank(), group.size(), cells);
  ASSERT_EQ(plan.rows(), at(block.count));
  EXPECT_EQ(plan.rows_of_all(), cells);
  const std::vector<double> sent(own.begin(), own.end());  // the numbers of the cells
  std::vector<double> rows(plan.rows()), back(own.size());
  plan.send(sent, rows, group);
  for (Number row = 0; row < block.count; ++row) EXPECT_EQ(rows[at(row)], block.first + row);
  plan.send_back(rows, back, group);
  EXPECT_EQ(back, sent);
}

}  // namespace

TEST(RowPlan, BringsEveryValueToItsRowAndBack) {
  for (const int count : {1, 2, 3, 5, 7}) {
    for (const Number cells : {7, 100, 1001}) {
      const auto of_ranks = any_cells(count, cells, static_cast<unsigned>(cells));
      ranks::InProcess job(count);
      std::vector<std::thread> members;
      for (int rank = 0; rank < count; ++rank) {
        members.emplace_back([&, rank] {
          test_ranks::DelayedGroup group(job.group(rank), 11);
          expect_rows(group, of_ranks[at(rank)], cells);
        });
      }
      for (std::thread& member : members) member.join();
    }
  }
}

TEST(RowPlan, SharesTheRowsOutInTheirOrder) {
  for (const Number cells : {1, 6, 7, 2000000011}) {
    Number next = 0;
    for (int rank = 0; rank < 7; ++rank) {
      const ranks::RowBlock block = ranks::rows_of(rank, 7, cells);
      EXPECT_EQ(block.first, next);
      EXPECT_GE(block.count, cells / 7);
      EXPECT_LE(block.count, cells / 7 + 1);
      next += block.count;
    }
    EXPECT_EQ(next, cells);
  }
}
