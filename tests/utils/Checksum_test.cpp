#include "utils/Checksum.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

namespace {

std::uint64_t sum_of(const std::string& text, std::uint64_t seed = 0) {
  utils::Checksum sum(seed);
  sum.add(text.data(), text.size());
  return sum.value();
}

std::string random_text(std::size_t size) {
  std::mt19937 random(1);
  std::string text(size, '\0');
  for (char& c : text) c = static_cast<char>(random());
  return text;
}

TEST(Checksum, DoesNotDependOnThePiecesInWhichBytesCome) {
  const std::string text = random_text(1000);
  std::mt19937 random(2);
  for (int round = 0; round < 50; ++round) {
    utils::Checksum sum;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t piece = std::min<std::size_t>(random() % 150, text.size() - at);
      sum.add(text.data() + at, piece);
      at += piece;
    }
    EXPECT_EQ(sum.value(), sum_of(text));
  }
}

TEST(Checksum, TellsTextsApartThatDifferInABit) {
  const std::string text = random_text(200);
  std::set<std::uint64_t> sums = {sum_of(text)};
  for (std::size_t bit = 0; bit < 8 * text.size(); ++bit) {
    std::string other = text;
    other[bit / 8] = static_cast<char>(other[bit / 8] ^ (1 << (bit % 8)));
    sums.insert(sum_of(other));
  }
  EXPECT_EQ(sums.size(), 8 * text.size() + 1);
}

TEST(Checksum, TellsTextsApartThatDifferInLengthOrOrder) {
  std::set<std::uint64_t> sums;
  for (std::size_t size = 0; size <= 300; ++size) sums.insert(sum_of(std::string(size, '\0')));
  EXPECT_EQ(sums.size(), 301U);
  const std::string text = random_text(256);
  for (const std::size_t stripe : {8U, 64U}) {  // words of a stripe, stripes
    EXPECT_NE(sum_of(text.substr(stripe, stripe) + text.substr(0, stripe)),
              sum_of(text.substr(0, 2 * stripe)));
  }
}

TEST(Checksum, OfAnotherSeedIsAnother) {
  EXPECT_NE(sum_of("text", 1), sum_of("text", 2));
  EXPECT_EQ(sum_of("text", 1), sum_of("text", 1));
}

TEST(Checksum, OfValuesKnowsWhereAVectorEnds) {
  utils::Checksum one, other;
  one.add_values(std::vector<int>{1, 2});
  one.add_values(std::vector<int>{3});
  other.add_values(std::vector<int>{1});
  other.add_values(std::vector<int>{2, 3});
  EXPECT_NE(one.value(), other.value());
}

}  // namespace
