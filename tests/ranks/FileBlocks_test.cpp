#include "ranks/FileBlocks.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

using engine::at;

namespace {

using Sizes = std::vector<std::uint64_t>;

constexpr ranks::WritersRequest small = {.block = 8, .bytes_at_once = 23};

/// What every writer gets, and that it is the whole file, in whole blocks, few of them at once.
class Written {
 public:
  Written(const Sizes& sizes, const std::vector<int>& writers) {
    std::string expected;
    std::vector<std::string> texts;
    for (const std::uint64_t size : sizes) {
      std::string& text = texts.emplace_back();
      for (std::uint64_t k = 0; k < size; ++k) {
        text += static_cast<char>('a' + expected.size() % 23);
        expected += text.back();
      }
    }
    std::string file(expected.size(), ' ');
    for (int rank = 0; rank < static_cast<int>(sizes.size()); ++rank) {
      const ranks::FileBlocks blocks(rank, sizes, writers, small);
      EXPECT_EQ(blocks.bytes(), expected.size());
      rounds = blocks.rounds();
      for (std::uint64_t round = 0; round < rounds; ++round) {
        std::map<int, int> messages;
        for (const auto& part : blocks.parts(round)) {
          EXPECT_GT(part.count, 0U);
          EXPECT_EQ(++messages[part.writer], 1);
          EXPECT_EQ(writers[at(part.writer)], part.writer);
          file.replace(part.place, part.count, texts[at(rank)].substr(part.first, part.count));
          add(part, round);
        }
      }
      EXPECT_TRUE(blocks.parts(rounds).empty());
    }
    EXPECT_EQ(file, expected);
    EXPECT_EQ(bytes, expected.size());
    for (const auto& [of, written] : at_once) {
      EXPECT_LE(written, small.bytes_at_once);
    }
  }

  std::uint64_t rounds = 0;
  std::map<std::uint64_t, int> writer_of_block;

 private:
  void add(const ranks::FileBlocks::Part& part, std::uint64_t round) {
    bytes += part.count;
    at_once[{part.writer, round}] += part.count;
    for (std::uint64_t place = part.place; place < part.place + part.count; ++place) {
      const auto known = writer_of_block.try_emplace(place / small.block, part.writer).first;
      EXPECT_EQ(known->second, part.writer) << place;
    }
  }

  std::uint64_t bytes = 0;
  std::map<std::pair<int, std::uint64_t>, std::uint64_t> at_once;
};

}  // namespace

TEST(FileBlocks, GoWholeToTheWriterOfTheirFirstByte) {
  const Written written({20, 20, 20}, {0, 0, 2});
  const std::map<std::uint64_t, int> expected = {{0, 0}, {1, 0}, {2, 0}, {3, 0},
                                                 {4, 0}, {5, 2}, {6, 2}, {7, 2}};
  EXPECT_EQ(written.writer_of_block, expected);
  EXPECT_EQ(written.rounds, 3U);  // five blocks, two at once
}

TEST(FileBlocks, OfNothingNeedNoRound) {
  EXPECT_EQ(Written({0, 0}, {0, 1}).rounds, 0U);
  EXPECT_EQ(Written({0}, {0}).rounds, 0U);
}

TEST(FileBlocks, MakeTheFileOfAnyTexts) {
  std::mt19937 random(3);
  const std::vector<std::vector<int>> writers = {
      {0, 0, 0, 0, 0}, {0, 1, 2, 3, 4}, {0, 0, 2, 2, 2}, {0, 1, 0, 1, 0}, {0, 1, 1, 0, 4}};
  for (int k = 0; k < 2000; ++k) {
    Sizes sizes(5);
    for (std::uint64_t& size : sizes) size = random() % (k % 2 == 0 ? 10 : 100);
    if (k % 3 == 0) sizes[random() % 5] = 0;
    if (k % 5 == 0) sizes[random() % 5] = 8 * (random() % 4);
    for (const std::vector<int>& of_ranks : writers) const Written check(sizes, of_ranks);
    if (HasFailure()) return;
  }
}
