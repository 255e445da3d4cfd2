#include "ranks/Blocks.hpp"

#include <gtest/gtest.h>

#include <numeric>

#include "ranks/on_ranks.hpp"

namespace {

using cases::Number;
using ranks::Blocks;
using Numbers = std::vector<Number>;

}  // namespace

TEST(Blocks, KnowWhoHasWhichRecord) {
  const Blocks blocks(Numbers{3, 0, 2, 0});
  EXPECT_EQ(blocks.total(), 5);
  EXPECT_EQ(blocks.begin(2), 3);
  EXPECT_EQ(blocks.size(1), 0);
  EXPECT_EQ(blocks.owner_of(2), 0);
  EXPECT_EQ(blocks.owner_of(3), 2);
  EXPECT_EQ(blocks.owner_of(4), 2);
}

TEST(Blocks, OfWhatEveryRankTellsAreKnownToAll) {
  test_ranks::on_ranks(4, [](ranks::Group& group) {
    const Blocks blocks(group, group.rank());
    EXPECT_EQ(blocks.total(), 6);
    EXPECT_EQ(blocks.begin(group.rank()), group.rank() * (group.rank() - 1) / 2);
  });
}

TEST(Blocks, TakeAColumnThatWasCutOtherwise) {
  const Numbers as_read = {0, 7, 1, 2}, wanted = {3, 0, 3, 4};
  test_ranks::on_ranks(4, [&](ranks::Group& group) {
    const Blocks read(as_read), blocks(wanted);
    std::vector<double> entries(ranks::at(read.size(group.rank())));
    std::iota(entries.begin(), entries.end(), read.begin(group.rank()));
    const auto own = ranks::into_blocks(group, entries, read.begin(group.rank()), blocks);
    ASSERT_EQ(own.size(), ranks::at(blocks.size(group.rank())));
    for (std::size_t k = 0; k < own.size(); ++k) {
      EXPECT_EQ(own[k], blocks.begin(group.rank()) + static_cast<double>(k));
    }
  });
}
