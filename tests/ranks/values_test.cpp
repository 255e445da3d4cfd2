// Values from rank to rank arrive as they were.
#include "ranks/values.hpp"

#include <gtest/gtest.h>

#include <numeric>

#include "ranks/expect_collectives.hpp"
#include "ranks/on_ranks.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/basin.hpp"

namespace {

using test_ranks::on_ranks;

template <class Value>
utils::Bytes bytes_of(const Value& value) {
  utils::Bytes bytes;
  utils::put_into(bytes, value);
  return bytes;
}

template <class Value>
void expect_broadcast(const Value& value) {
  on_ranks(3, [&](ranks::Group& group) {
    if (group.rank() == 0) {
      ranks::broadcast_out(group, value);
      return;
    }
    Value received;
    ranks::broadcast_in(group, received);
    EXPECT_TRUE(bytes_of(received) == bytes_of(value)) << group.rank();
  });
}

}  // namespace

TEST(ValuesOfRanks, ABroadcastCaseIsTheCase) {
  const support::TemporaryFolder folder;
  for (const bool sediments : {false, true}) {
    const cases::Case contents = support::basin({.sediments = sediments}, folder);
    EXPECT_GT(bytes_of(contents).size(), 10000U);
    expect_broadcast(contents);
  }
}

TEST(ValuesOfRanks, ABroadcastTakesAnyNumberOfBlocks) {
  const std::size_t in_a_block = ranks::BlockSink::block / sizeof(double);
  for (const std::size_t count : {std::size_t{0}, in_a_block - 1, in_a_block, 3 * in_a_block + 5}) {
    std::vector<double> values(count);  // behind their number, which is as long as one of them
    std::iota(values.begin(), values.end(), 0.5);
    expect_broadcast(values);
  }
}

TEST(ValuesOfRanks, AValueForOneRankTakesAnyNumberOfBlocks) {
  std::vector<double> values(2 * ranks::BlockSink::block / sizeof(double) + 3);
  std::iota(values.begin(), values.end(), 0.5);
  on_ranks(2, [&](ranks::Group& group) {
    if (group.rank() == 0) return ranks::send_value(group, values, 1);
    EXPECT_EQ(ranks::receive_value<std::vector<double>>(group, 0), values);
  });
}

TEST(ValuesOfRanks, AValueIsSentToOneRank) {
  on_ranks(3, [](ranks::Group& group) {
    const std::string text = "for rank ";
    if (group.rank() == 0) {
      for (const int other : {1, 2}) ranks::send_value(group, text + std::to_string(other), other);
    } else {
      EXPECT_EQ(ranks::receive_value<std::string>(group, 0), text + std::to_string(group.rank()));
    }
  });
}

TEST(ValuesOfRanks, NumbersAreSummedUpPlaceByPlace) {
  for (const int count : {1, 2, 3, 5, 8}) {
    on_ranks(count, [count](ranks::Group& group) {
      std::vector<std::int64_t> sums = {group.rank(), 1, std::int64_t{1} << 40};
      ranks::sum_over_ranks(group, sums);
      EXPECT_EQ(sums, (std::vector<std::int64_t>{count * (count - 1) / 2, count,
                                                 count * (std::int64_t{1} << 40)}));
    });
  }
}

TEST(RanksInOneProcess, SendToSomeAndGatherInAnyOrderOfArrival) {
  for (const int count : {1, 2, 3, 5, 7}) {
    on_ranks(count, [](ranks::Group& group) {
      test_ranks::expect_messages_to_some(group);
      test_ranks::expect_gathered_by_all(group);
      test_ranks::expect_ranks_of_a_machine(group);
    });
    test_ranks::on_late_ranks(count, [](ranks::Group& group) {
      test_ranks::expect_messages_to_some(group);
      test_ranks::expect_gathered_by_all(group);
    });
  }
}

TEST(ValuesOfRanks, TheFirstRanksAreAGroupOfTheirOwn) {
  on_ranks(5, [](ranks::Group& group) {
    for (const int members : {2, 5, 3}) {
      const auto first = group.first(members);
      EXPECT_EQ(first != nullptr, group.rank() < members);
      if (!first) continue;
      EXPECT_EQ(first->size(), members);
      EXPECT_EQ(first->rank(), group.rank());
      int number = group.rank() == 0 ? 7 : 0;
      ranks::broadcast_plain(*first, number);
      EXPECT_EQ(number, 7);
    }
  });
}
