// Where a rank fails alone, no other one waits for it: whatever they do, and whenever it fails.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "case/EndAtFirstError.hpp"
#include "fields/Clock.hpp"
#include "fields/RanksFlow.hpp"
#include "fields/serve.hpp"
#include "ranks/GroupAround.hpp"
#include "ranks/InProcess.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/SplitReading.hpp"
#include "ranks/on_ranks.hpp"
#include "support/Told.hpp"
#include "utils/OutputFile.hpp"
#include "utils/WriterThread.hpp"

using namespace test_ranks;

namespace {

constexpr const char* failure = "a rank fails on purpose";

/// Throws when so many messages have been counted.
class Fuse {
 public:
  explicit Fuse(long messages) : left_(messages) {}

  void count() {
    if (--left_ == 0) throw std::runtime_error(failure);
  }
  bool has_blown() const { return left_ <= 0; }

 private:
  std::atomic<long> left_;
};

class FailingExchange final : public ExchangeAround {
 public:
  FailingExchange(std::unique_ptr<engine::Exchange> exchange, Fuse& fuse)
      : ExchangeAround(std::move(exchange)), fuse_(fuse) {}

 private:
  void before() override { fuse_.count(); }

  Fuse& fuse_;
};

/// A rank that fails before one of its messages.
class FailingGroup final : public GroupAround {
 public:
  FailingGroup(std::unique_ptr<ranks::Group> group, Fuse& fuse)
      : GroupAround(std::move(group)), fuse_(fuse) {}

 private:
  void before() override { fuse_.count(); }
  std::unique_ptr<ranks::Group> around(std::unique_ptr<ranks::Group> part) override {
    return std::make_unique<FailingGroup>(std::move(part), fuse_);
  }
  std::unique_ptr<engine::Exchange> around(std::unique_ptr<engine::Exchange> exchange,
                                           std::size_t) override {
    return std::make_unique<FailingExchange>(std::move(exchange), fuse_);
  }

  Fuse& fuse_;
};

class BrokenGroup : public PartsOfCourse {
 protected:
  static constexpr int count = 3;

  /// What a rank ends with; nothing: no exception.
  template <class Do>
  static std::string end_of(const Do& do_it) {
    try {
      do_it();
    } catch (const std::exception& error) {
      return error.what();
    }
    return "";
  }

  /// Calls body(group) as rank 0 of a few, of which one fails at that message, if it gets there.
  /// Answers whether it did: then all of them have ended, and with an exception, but for those that
  /// had nothing more to do.
  static bool fails(int failing, long message, const std::function<void(ranks::Group&)>& body) {
    ranks::InProcess job(count);
    Fuse fuse(message);
    const auto group_of = [&](int rank) {
      auto group = job.group(rank);
      if (rank == failing) group = std::make_unique<FailingGroup>(std::move(group), fuse);
      return group;
    };
    std::vector<std::string> ends(at(count));
    std::vector<std::thread> others;
    for (int rank = 1; rank < count; ++rank) {
      others.emplace_back([&, rank] {
        const auto group = group_of(rank);
        ends[at(rank)] = end_of([&] { fields::serve(*group, [] { return false; }); });
        // What main() does for a process.
        if (!ends[at(rank)].empty()) group->break_up();
      });
    }
    const auto group = group_of(0);
    ends.front() = end_of([&] { body(*group); });
    if (!group->is_broken()) {
      EXPECT_EQ(ends.front(), "");
      ends.front() = end_of([&] { fields::end_service(*group, 0); });
      if (!ends.front().empty()) group->break_up();
    } else if (ends.front().empty() && failing == 0) {  // the flow ended, and kept it to itself
      ends.front() = failure;
    }
    for (std::thread& other : others) other.join();
    if (!fuse.has_blown()) {
      EXPECT_EQ(ends, std::vector<std::string>(at(count)));
      return false;
    }
    for (int rank = 0; rank < count; ++rank) {
      const std::string expected = rank == failing ? failure : ranks::BrokenGroup().what();
      const bool has_done_all = rank != failing && ends[at(rank)].empty();
      EXPECT_TRUE(has_done_all || ends[at(rank)] == expected)
          << "rank " << rank << " ended with \"" << ends[at(rank)] << "\" when rank " << failing
          << " failed at message " << message;
    }
    return true;
  }
  /// Whichever rank fails, at every one of its messages.
  static void expect_that_none_waits(const std::function<void(ranks::Group&)>& body) {
    for (const int failing : {0, 1, count - 1}) {
      long message = 1;
      while (!HasFailure() && fails(failing, message, body)) ++message;
      EXPECT_GT(message, 10);
    }
  }

  support::Told told_;
};

}  // namespace

TEST_F(BrokenGroup, WakesWhoeverWaitsInIt) {
  const cases::Case contents = basin({});
  const auto shares = shares_of(contents, ranks::cut_along_curve(contents.mesh, 2));
  std::vector<std::byte> bytes(8), of_all(16);
  const std::vector<std::function<void(ranks::Group&)>> waits = {
      [&](ranks::Group& group) { group.broadcast(bytes); },
      [&](ranks::Group& group) { group.receive(bytes, 0); },
      [&](ranks::Group& group) {  // there is room for one
        group.send(bytes, 0);
        group.send(bytes, 0);
      },
      [&](ranks::Group& group) { group.send_to_some({}); },
      [&](ranks::Group& group) { group.gather_all(bytes, of_all); },
      [&](ranks::Group& group) { group.first(2)->receive(bytes, 0); },
      [&](ranks::Group& group) {
        engine::Engine(shares[1].part, *group.exchange(shares[1].halos), 1, 64).stable_step(0.0);
      },
      [&](ranks::Group& group) { group.exchange({})->finish_minimum(); },
      [&](ranks::Group& group) { group.exchange({})->finish_uniting(); }};
  for (std::size_t k = 0; k < waits.size(); ++k) {
    on_ranks(2, [&](ranks::Group& group) {
      if (group.rank() == 0) return group.break_up();
      EXPECT_THROW(waits[k](group), ranks::BrokenGroup) << k;
      EXPECT_TRUE(group.is_broken());
    });
  }
}

TEST_F(BrokenGroup, EndsEveryRankOfAFlow) {
  const cases::Case contents = basin({.sediments = true});
  std::vector<double> depths(2);
  expect_that_none_waits([&](ranks::Group& group) {
    support::Told told;
    fields::RanksFlow flow(contents, told, {.group = &group, .largest_text = 1000}, 1, {});
    flow.keep_maxima(arrival_depth);
    fields::Clock clock = fields::clock_at_start(contents, flow);
    flow.watch();
    const auto looks = flow.looks(contents);
    const auto saved = flow.saved_rows();
    flow.leave_alone_until(clock.t + 1.5 * clock.dt);
    do {
      fields::advance(flow, contents, clock);
    } while (!flow.takes_questions() && !group.is_broken());
    flow.recut(uneven_parts(contents.mesh, count));
    looks->water();
    looks->survey();
    flow.state(contents.mesh.n_cells() - 1);
    flow.read(fields::Field::depth, std::vector<Number>{0, contents.mesh.n_cells() - 1}, depths);
    flow.ground(contents)->geometry_of(contents.mesh.n_cells() - 1);
    saved->gather({looks.get(), true});
    utils::Bytes rows;
    utils::MemorySink sink(rows);
    saved->put_own_to(sink);
    for (bool has_more = true; has_more;) {
      const auto piece = saved->next();
      if (!piece) continue;
      sink.put(piece->text.data(), piece->text.size());
      has_more = !piece->is_last;
    }
    utils::MemorySource source(rows);
    flow.load(saved->flow(), source);
  });
}

TEST_F(BrokenGroup, EndsEveryRankThatWrites) {
  const cases::Case contents = basin({});
  const support::TemporaryFolder to;
  expect_that_none_waits([&](ranks::Group& group) {
    support::Told told;
    fields::RanksRequest request{.group = &group};
    request.writers = {.count = 2, .block = 1000, .bytes_at_once = 4000};
    fields::RanksFlow flow(contents, told, request, 1, {});
    utils::WholeFile file(to.file("table.txt"));
    const auto rows = flow.rows(contents.mesh, {{fields::Field::depth}});
    rows->gather();
    const auto part = file.share();
    while (rows->write_shared(part.value(), "").state != fields::SharedFile::State::is_over) {
      rows->wait_for_own();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));  // few calls, for few messages
    }
  });
}

TEST_F(BrokenGroup, EndsEveryRankThatReadsACase) {
  const support::TemporaryFolder files;
  cases::Case contents = basin({.soils = false});
  for (cases::Boundary& boundary : contents.mesh.boundaries) {  // series have no files
    if (boundary.series >= 0) boundary = {boundary.edge, edge_code::wall, 0.0, -1};
  }
  contents.series.clear();
  const std::string data_file = write_case(contents, files);
  std::ostringstream nowhere;
  utils::Console console(nowhere);
  expect_that_none_waits([&](ranks::Group& group) {
    support::Told told;
    fields::SharedCase shared(group, data_file, {nowhere, console}, told);
    const cases::ReadCase read = shared.take_case();
    shared.ground()->geometry_of(0);
    fields::RanksRequest request{.group = &group, .shared = &shared};
    fields::RanksFlow(read.contents, told, request, 1, {}).stable_step(0.0);
  });
}

TEST_F(BrokenGroup, IsAskedNothingMore) {
  const cases::Case contents = basin({});
  ranks::InProcess job(2);
  std::thread other([&] {
    EXPECT_THROW(fields::serve(*job.group(1), [] { return false; }), ranks::BrokenGroup);
  });
  {
    const auto group = job.group(0);
    fields::RanksFlow flow(contents, told_, {.group = group.get(), .largest_text = 100}, 1, {});
    utils::WriterThread writer;
    const auto rows = flow.rows(contents.mesh, {{fields::Field::depth}});
    rows->gather();
    writer.hand_over_pieces([&]() -> std::optional<utils::WriterThread::Piece> {
      const auto text = rows->next();
      if (!text) return {};
      return utils::WriterThread::Piece{[] { return true; }, text->is_last};
    });
    group->break_up();
    EXPECT_FALSE(flow.takes_questions());
    EXPECT_THROW(flow.looks(contents)->survey(), ranks::BrokenGroup);
    EXPECT_THROW(flow.advance({0.0, 0.0, t_end, 1e-4}), ranks::BrokenGroup);
    testing::internal::CaptureStderr();
    utils::wait_for_writers();
    EXPECT_TRUE(writer.has_failed());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error. A writer of results failed: another rank has failed\n");
  }
  other.join();
}
