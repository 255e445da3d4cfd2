#include "ranks/SendPlan.hpp"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

#include "ranks/on_ranks.hpp"

namespace {

using cases::Number;
using ranks::Blocks;
using ranks::SendPlan;
using Numbers = std::vector<Number>;

/// Ten records follow each other over three ranks, the second of which has none; a record goes to
/// the rank of its remainder, and those that five divides to rank 2 too.
const Blocks blocks(Numbers{4, 0, 6});

SendPlan plan_of(ranks::Group& group) {
  const Number first = blocks.begin(group.rank());
  return {group, blocks.size(group.rank()), [first](Number record, const auto& visit) {
            const int rank = (first + record) % 3;
            visit(rank);
            if ((first + record) % 5 == 0 && rank != 2) visit(2);
          }};
}

Numbers records_here(const ranks::Group& group) {
  Numbers records(ranks::at(blocks.size(group.rank())));
  std::iota(records.begin(), records.end(), blocks.begin(group.rank()));
  return records;
}

const std::array<Numbers, 3> expected = {Numbers{0, 3, 6, 9}, {1, 4, 7}, {0, 2, 5, 8}};

}  // namespace

TEST(SendPlan, BringsTheRecordsOfEachRankInTheirOrder) {
  test_ranks::on_ranks(3, [](ranks::Group& group) {
    const SendPlan plan = plan_of(group);
    const Numbers records = records_here(group);
    EXPECT_EQ(plan.send(records), expected.at(ranks::at(group.rank())));
    const std::vector<double> halves(records.begin(), records.end());
    EXPECT_EQ(plan.send(halves).size(), expected.at(ranks::at(group.rank())).size());
    EXPECT_TRUE(plan.send(std::vector<double>()).empty());
  });
}

TEST(SendPlan, BringsListsEndToEnd) {
  test_ranks::on_ranks(3, [](ranks::Group& group) {
    const SendPlan plan = plan_of(group);
    std::vector<Numbers> lists;  // each record as often as it is
    for (const Number record : records_here(group)) lists.emplace_back(record, record);
    const auto found = plan.send_lists<Number>(
        [&](Number record) { return std::span<const Number>(lists[ranks::at(record)]); });
    Numbers wanted;
    for (const Number record : expected.at(ranks::at(group.rank()))) {
      wanted.insert(wanted.end(), ranks::at(record), record);
    }
    EXPECT_EQ(found, wanted);
  });
}

TEST(SendPlan, BringsWhatIsWantedOfBlocks) {
  test_ranks::on_ranks(3, [](ranks::Group& group) {
    const Numbers wanted = group.rank() == 1 ? Numbers{} : Numbers{0, 3, 4, 9};
    const SendPlan plan = SendPlan::of_wanted(group, wanted, blocks);
    std::vector<int> column;
    for (const Number record : records_here(group)) column.push_back(100 * group.rank() + record);
    const auto found = plan.send(column);
    if (group.rank() == 1) {
      EXPECT_TRUE(found.empty());
    } else {
      EXPECT_EQ(found, (std::vector<int>{0, 3, 204, 209}));
    }
  });
}
