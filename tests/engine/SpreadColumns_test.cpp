#include "engine/SpreadColumns.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

namespace {

constexpr std::size_t line = 64, page = 4096;  // bytes

std::size_t place_in_page(const double* column) {
  return static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(column) % page);
}

TEST(SpreadColumns, BeginAtPlacesOfTheirOwnInAPage) {
  for (const std::size_t size : {1U, 511U, 512U, 513U, 7777U}) {
    engine::SpreadColumns<5> columns;
    columns.assign(size);
    std::set<std::size_t> lines;
    for (int k = 0; k < 5; ++k) {
      EXPECT_EQ(place_in_page(columns[k]) % line, 0U);
      lines.insert(place_in_page(columns[k]) / line);
    }
    EXPECT_EQ(lines.size(), 5U) << size;
  }
}

TEST(SpreadColumns, HoldTheirNumbersApart) {
  engine::SpreadColumns<3> columns;
  columns.assign(600);
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 600; ++i) {
      EXPECT_EQ(columns[k][i], 0.0);
      columns[k][i] = 1000.0 * k + i;
    }
  }
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 600; ++i) ASSERT_EQ(columns[k][i], 1000.0 * k + i);
  }
}

TEST(SpreadColumns, AreNullBeforeTheyHaveASize) {
  engine::SpreadColumns<2> columns;
  EXPECT_EQ(columns[0], nullptr);
  EXPECT_EQ(columns[1], nullptr);
}

}  // namespace
