// A list that the threads of a team take entry by entry.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "engine/Range.hpp"

namespace engine {

/// Every member begins with a share of its own, at its front. Who has none left takes from the
/// backs of the others', so that nobody waits long for a thread that lost its core to another.
class SharedList {
 public:
  explicit SharedList(int members) : shares_(static_cast<std::size_t>(members)) {}

  /// So many entries are to be taken, once each; to be called by one thread, while none takes any.
  void deal(std::size_t count) {
    const int members = static_cast<int>(shares_.size());
    for (int member = 0; member < members; ++member) {
      const Range range = share_of(member, members, count);
      shares_[static_cast<std::size_t>(member)].left = {static_cast<std::uint32_t>(range.begin),
                                                        static_cast<std::uint32_t>(range.end)};
    }
  }

  /// Number of an entry, for a member; -1: all are taken.
  int take(int member) {
    const std::size_t own = static_cast<std::size_t>(member);
    for (std::size_t k = 0; k < shares_.size(); ++k) {
      const int taken = take_from(shares_[(own + k) % shares_.size()].left, k == 0);
      if (taken >= 0) return taken;
    }
    return -1;
  }

 private:
  struct alignas(8) Left {  // as processors exchange it
    std::uint32_t begin = 0, end = 0;
  };
  struct alignas(64) Share {  // a line of the cache each
    std::atomic<Left> left;
  };

  static int take_from(std::atomic<Left>& share, bool at_front) {
    Left left = share.load(std::memory_order_relaxed);
    while (left.begin < left.end) {
      const Left less = at_front ? Left{left.begin + 1, left.end} : Left{left.begin, left.end - 1};
      if (share.compare_exchange_weak(left, less, std::memory_order_relaxed)) {
        return static_cast<int>(at_front ? left.begin : less.end);
      }
    }
    return -1;
  }

  std::vector<Share> shares_;
};

}  // namespace engine
