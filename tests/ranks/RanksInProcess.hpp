// Ranks of one process that compute parts of a case side by side.
#pragma once

#include <atomic>
#include <thread>

#include "ranks/InProcess.hpp"
#include "ranks/PartsOfCourse.hpp"

namespace test_ranks {

class RanksInProcess : public PartsOfCourse {
 protected:
  /// Calls body(rank, engine) for every share, each in a thread of its own.
  template <class Body>
  static void run_side_by_side(const std::vector<ranks::Share>& shares, int threads,
                               int cells_per_patch, const Body& body,
                               const engine::Processor& processor = {},
                               bool takes_memory_of_card = false) {
    ranks::InProcess job(static_cast<int>(shares.size()), takes_memory_of_card);
    std::vector<std::thread> members;
    for (int rank = 0; rank < static_cast<int>(shares.size()); ++rank) {
      members.emplace_back([&, rank] {
        const auto exchange = job.group(rank)->exchange(shares[at(rank)].halos);
        engine::Engine engine(shares[at(rank)].part, *exchange, threads, cells_per_patch,
                              processor);
        engine.keep_maxima(arrival_depth);
        body(rank, engine);
      });
    }
    for (std::thread& member : members) member.join();
  }

  /// Patches that the last step computed on all ranks, and how many there are.
  struct Work {
    int computed = 0, patches = 0;
  };
  static Work expect_same(const cases::Case& contents, const Course& expected,
                          const std::vector<ranks::Share>& shares, int threads = 1,
                          int cells_per_patch = 64, const engine::Processor& processor = {},
                          bool takes_memory_of_card = false) {
    std::atomic<int> computed = 0, patches = 0;
    run_side_by_side(
        shares, threads, cells_per_patch,
        [&](int rank, engine::Engine& engine) {
          expect_same_steps(contents, expected, shares[at(rank)].part, engine, 0);
          computed += engine.active_patches();
          patches += static_cast<int>(engine.tables().patches.patches.size());
        },
        processor, takes_memory_of_card);
    return {computed, patches};
  }

  static void expect_same_on_any_number(const cases::Case& contents, int steps) {
    const Course expected = run_alone(contents, steps);
    EXPECT_FALSE(have_same_bits(expected.states.front(), expected.states.back()));
    for (const int count : {1, 2, 3, 5}) {
      const auto cells = ranks::cut_along_curve(contents.mesh, count);
      ASSERT_EQ(cells.size(), at(count));
      expect_same(contents, expected, shares_of(contents, cells));
    }
  }
};

}  // namespace test_ranks
