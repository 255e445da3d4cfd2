#include "utils/WordSum.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::string some_bytes(std::size_t count) {
  std::mt19937 random(3);
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(random() % 256);
  return bytes;
}

std::uint64_t word_sum_of(const std::string& bytes, std::uint64_t first = 0) {
  utils::WordSum sum;
  sum.add(first, bytes.data(), bytes.size());
  return sum.value();
}

}  // namespace

TEST(WordSum, KnowsNoOrderOfPieces) {
  const std::string bytes = some_bytes(400);
  utils::WordSum sum;
  sum.add(70, bytes.data() + 280, 120);
  sum.add(0, bytes.data(), 12);
  sum.add(3, bytes.data() + 12, 268);
  EXPECT_EQ(sum.value(), word_sum_of(bytes));
}

TEST(WordSum, ShowsAnyChangeAndAnyOtherPlace) {
  const std::string bytes = some_bytes(400);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string changed = bytes;
    changed[i] ^= static_cast<char>(1 << (i % 8));
    EXPECT_NE(word_sum_of(changed), word_sum_of(bytes)) << i;
  }
  std::string swapped = bytes;
  swapped.replace(0, 4, bytes, 200, 4).replace(200, 4, bytes, 0, 4);
  EXPECT_NE(word_sum_of(swapped), word_sum_of(bytes));
  EXPECT_NE(word_sum_of(bytes, 1), word_sum_of(bytes));
  EXPECT_NE(word_sum_of(std::string(8, '\0')), word_sum_of(std::string(4, '\0')));
}
