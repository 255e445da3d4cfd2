// Ranks that are threads of a test.
#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "ranks/DelayedGroup.hpp"
#include "ranks/InProcess.hpp"

namespace test_ranks {

/// Calls body(group) on every rank.
inline void on_ranks(int count, const std::function<void(ranks::Group&)>& body,
                     bool are_late = false) {
  ranks::InProcess job(count);
  std::vector<std::thread> members;
  for (int rank = 0; rank < count; ++rank) {
    members.emplace_back([&, rank] {
      std::unique_ptr<ranks::Group> group = job.group(rank);
      constexpr unsigned seed = 5;
      if (are_late) group = std::make_unique<DelayedGroup>(std::move(group), seed);
      body(*group);
    });
  }
  for (std::thread& member : members) member.join();
}
/// The same with messages that overtake each other.
inline void on_late_ranks(int count, const std::function<void(ranks::Group&)>& body) {
  on_ranks(count, body, true);
}

}  // namespace test_ranks
