// What any group of ranks does together; every rank calls these.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "ranks/values.hpp"

namespace test_ranks {

inline utils::Bytes some_bytes(std::size_t count, int seed) {
  utils::Bytes bytes(count);
  std::mt19937 generator(static_cast<unsigned>(seed));
  for (std::byte& byte : bytes) byte = static_cast<std::byte>(generator() & 0xff);
  return bytes;
}

/// What rank `from` sends to rank `to` in a round: to none, to some or to all, itself included,
/// nothing but the message itself now and then.
inline bool sends(int round, int from, int to) {
  return round > 0 && (from * 7 + to * 3 + round) % (round + 1) == 0;
}
inline utils::Bytes message(int round, int from, int to) {
  const int number = (round * 31 + from) * 31 + to;
  return some_bytes(static_cast<std::size_t>(number * 97 % 1500) * (number % 4 == 0 ? 0 : 1),
                    number);
}

/// Rounds without a pause between them, so that ranks are in different ones at a time.
inline void expect_messages_to_some(ranks::Group& group) {
  for (int round = 0; round < 12; ++round) {
    std::vector<ranks::Message> sent, expected;
    for (int other = group.size() - 1; other >= 0; --other) {
      if (sends(round, group.rank(), other)) {
        sent.push_back({other, message(round, group.rank(), other)});
      }
    }
    for (int other = 0; other < group.size(); ++other) {
      if (sends(round, other, group.rank())) {
        expected.push_back({other, message(round, other, group.rank())});
      }
    }
    const std::vector<ranks::Message> received = group.send_to_some(std::move(sent));
    ASSERT_EQ(received.size(), expected.size()) << round;
    for (std::size_t k = 0; k < received.size(); ++k) {
      EXPECT_EQ(received[k].rank, expected[k].rank) << round;
      EXPECT_TRUE(received[k].bytes == expected[k].bytes) << round << ' ' << received[k].rank;
    }
  }
}

/// Of ranks that are all on one machine.
inline void expect_ranks_of_a_machine(ranks::Group& group) {
  const int own = group.rank_on_machine();
  std::vector<int> all(engine::at(group.size()));
  group.gather_all(std::as_bytes(std::span(&own, 1)), std::as_writable_bytes(std::span(all)));
  for (int rank = 0; rank < group.size(); ++rank) EXPECT_EQ(all[engine::at(rank)], rank);
  EXPECT_EQ(group.first_on_machine(), 0);
}

inline void expect_gathered_by_all(ranks::Group& group) {
  for (const std::size_t count : {0U, 1U, 7U, 8U, 1000U}) {
    const utils::Bytes own = some_bytes(count, group.rank());
    utils::Bytes all(count * engine::at(group.size())), expected;
    for (int other = 0; other < group.size(); ++other) {
      const utils::Bytes part = some_bytes(count, other);
      expected.insert(expected.end(), part.begin(), part.end());
    }
    group.gather_all(own, all);
    EXPECT_TRUE(all == expected) << count;
  }
  const std::vector<int> ranks = ranks::gather_all_plain(group, group.rank());
  std::vector<int> expected(engine::at(group.size()));
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(ranks, expected);
}

}  // namespace test_ranks
