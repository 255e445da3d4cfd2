// What rank 0 does while the other ranks, which are threads of this process, serve it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "fields/RanksFlow.hpp"
#include "fields/serve.hpp"
#include "ranks/InProcess.hpp"

namespace test_ranks {

struct OtherRanks {
  int count = 1;  ///< of all ranks
  std::function<bool()> are_interrupted = [] { return false; };
  /// What becomes of the group that a rank sees.
  std::function<std::unique_ptr<ranks::Group>(std::unique_ptr<ranks::Group>)> changed =
      [](std::unique_ptr<ranks::Group> group) { return group; };
};

/// Calls body(group) as rank 0.
template <class Body>
void as_first_of(const OtherRanks& others, const Body& body) {
  constexpr int end = 7;
  ranks::InProcess job(others.count);
  std::vector<std::thread> threads;
  for (int rank = 1; rank < others.count; ++rank) {
    threads.emplace_back([&, rank] {
      EXPECT_EQ(fields::serve(*others.changed(job.group(rank)), others.are_interrupted), end);
    });
  }
  const auto group = others.changed(job.group(0));
  const auto end_all = [&] {
    fields::end_service(*group, end);
    for (std::thread& thread : threads) thread.join();
  };
  try {
    body(*group);
  } catch (...) {
    end_all();
    throw;
  }
  end_all();
}

}  // namespace test_ranks
