// What is kept of a flow has the same bytes from any number of ranks, goes on on any other, and is
// whole on none of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "fields/make_flow.hpp"
#include "ranks/DelayedGroup.hpp"
#include "ranks/GroupAround.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/as_first_of.hpp"
#include "ranks/kept.hpp"
#include "support/Told.hpp"

using namespace test_ranks;

namespace {

using GroupPointer = std::unique_ptr<ranks::Group>;

/// Notes the largest number of bytes that a rank sends or is sent at once.
class WatchedGroup final : public GroupAround {
 public:
  WatchedGroup(GroupPointer group, std::atomic<std::size_t>& largest)
      : GroupAround(std::move(group)), largest_(largest) {}

  void broadcast(std::span<std::byte> bytes) override {
    note(bytes.size());
    GroupAround::broadcast(bytes);
  }
  void send(std::span<const std::byte> bytes, int to) override {
    note(bytes.size());
    GroupAround::send(bytes, to);
  }
  std::vector<ranks::Message> send_to_some(std::vector<ranks::Message> sent) override {
    note(size_of(sent));
    std::vector<ranks::Message> received = GroupAround::send_to_some(std::move(sent));
    note(size_of(received));
    return received;
  }
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override {
    note(all.size());
    GroupAround::gather_all(own, all);
  }

 private:
  GroupPointer around(GroupPointer part) override {
    return std::make_unique<WatchedGroup>(std::move(part), largest_);
  }
  std::unique_ptr<engine::Exchange> around(std::unique_ptr<engine::Exchange> exchange,
                                           std::size_t) override {
    return exchange;
  }
  static std::size_t size_of(const std::vector<ranks::Message>& messages) {
    std::size_t size = 0;
    for (const ranks::Message& message : messages) size += message.bytes.size();
    return size;
  }
  void note(std::size_t size) {
    std::size_t largest = largest_;
    while (size > largest && !largest_.compare_exchange_weak(largest, size)) {
    }
  }

  std::atomic<std::size_t>& largest_;
};

class SavedRowsOfRanks : public PartsOfCourse {
 protected:
  static void advance(fields::Flow& flow, int first, int end) {
    for (int step = first; step < end; ++step) flow.advance({1e-3 * step, 0.0, t_end, 1e-3});
  }
  /// Of a flow behind so many steps, of `end` in all; from what was kept of another, or the start.
  std::vector<Kept> run(const cases::Case& contents, const fields::FlowRequest& request, int first,
                        int end, const Kept* from = nullptr) {
    const auto flow = fields::make_flow(contents, told_, request);
    flow->keep_maxima(arrival_depth);
    const auto rows = flow->saved_rows();
    std::vector<Kept> kept = {kept_of(*rows, {})};
    if (from != nullptr) {
      EXPECT_TRUE(fields::fits(from->flow, kept.front().flow, contents));
      utils::MemorySource source(from->rows);
      flow->load(from->flow, source);
      EXPECT_EQ(source.left(), 0U);
    }
    flow->watch();
    const auto looks = flow->looks(contents);
    const fields::Books books{looks.get(), true};
    if (from != nullptr) {
      const fields::SavedFlow present = kept_of(*rows, books).flow;
      EXPECT_TRUE(fields::fits(fields::SavedPart::notes, from->flow, present));
      EXPECT_TRUE(fields::fits(fields::SavedPart::infiltrated, from->flow, present));
      utils::MemorySource source(from->rows);
      flow->load_books(from->flow, true, *looks, source);
      kept.push_back(kept_of(*rows, books));
    }
    advance(*flow, first, (first + end) / 2);
    looks->water();
    advance(*flow, (first + end) / 2, end);
    kept.push_back(kept_of(*rows, books));
    return kept;
  }
  fields::FlowRequest on(ranks::Group& group, std::size_t largest_text = 1000) const {
    fields::FlowRequest request{.most_threads = 1};
    request.ranks.group = &group;
    request.ranks.largest_text = largest_text;
    return request;
  }
  void expect_same(const cases::Case& contents) {
    const fields::FlowRequest alone{.most_threads = 1};
    const std::vector<Kept> first = run(contents, alone, 0, 10);
    const std::vector<Kept> second = run(contents, alone, 10, 20, &first.back());
    EXPECT_TRUE(second[1] == first.back());
    for (const int count : {2, 3, 7}) {
      OtherRanks others{count};
      others.changed = [](GroupPointer group) {
        return std::make_unique<DelayedGroup>(std::move(group), 5);
      };
      as_first_of(others, [&](ranks::Group& group) {
        EXPECT_TRUE(run(contents, on(group), 0, 10) == first) << count;
        EXPECT_TRUE(run(contents, on(group), 10, 20, &first.back()) == second) << count;
      });
    }
  }

  support::Told told_;
};

}  // namespace

TEST_F(SavedRowsOfRanks, AreThoseOfOneAndGoOnAsThere) {
  expect_same(basin({}));
  expect_same(basin({.sediments = true, .soils = false}));
}

TEST_F(SavedRowsOfRanks, AreAtNoTimeMoreOnARankThanItsShare) {
  const cases::Case contents = basin({});
  const std::vector<Kept> kept = run(contents, {.most_threads = 1}, 0, 4);
  const std::size_t whole = kept.back().rows.size();
  constexpr int count = 7;
  std::atomic<std::size_t> largest = 0;
  OtherRanks others{count};
  others.changed = [&](GroupPointer group) {
    return std::make_unique<WatchedGroup>(std::move(group), largest);
  };
  as_first_of(others, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    flow->keep_maxima(arrival_depth);
    const auto rows = flow->saved_rows();
    largest = 0;
    kept_of(*rows, {});
    utils::MemorySource source(kept.back().rows);
    flow->load(kept.back().flow, source);
  });
  EXPECT_GT(largest, 0U);
  EXPECT_LE(largest, whole / count + kept.back().flow.bytes_per_row());
}

TEST_F(SavedRowsOfRanks, LeaveAFlowAsItWasWhereTheirSourceEndsEarly) {
  const cases::Case contents = basin({});
  const Kept kept = run(contents, {.most_threads = 1}, 0, 10).back();
  as_first_of({3}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    flow->keep_maxima(arrival_depth);
    const auto rows = flow->saved_rows();
    const Kept before = kept_of(*rows, {});
    for (const std::size_t missing : {std::size_t{1}, kept.rows.size() / 2, kept.rows.size()}) {
      const utils::Bytes cut(kept.rows.begin(),
                             kept.rows.end() - static_cast<std::ptrdiff_t>(missing));
      utils::MemorySource source(cut);
      EXPECT_THROW(flow->load(kept.flow, source), utils::BadBytes);
      EXPECT_TRUE(kept_of(*rows, {}) == before);
    }
    utils::MemorySource source(kept.rows);
    flow->load(kept.flow, source);
    EXPECT_FALSE(kept_of(*rows, {}) == before);
  });
}

TEST_F(SavedRowsOfRanks, ComeRightFromResultsThatTakeTurns) {
  const cases::Case contents = basin({});
  as_first_of({3}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    const Kept expected = kept_of(*flow->saved_rows(), {});
    const auto longest = flow->saved_rows();
    for (int turn = 0; turn < 3; ++turn) {
      flow->rows(contents.mesh, {{fields::Field::depth}})->gather();  // and is dropped half done
      const auto other = flow->saved_rows();
      other->gather({});
      EXPECT_TRUE(kept_of(*flow->saved_rows(), {}) == expected);
      EXPECT_TRUE(kept_of(*longest, {}) == expected);
    }
  });
}
