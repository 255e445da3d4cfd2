#include "engine/ThreadTeam.hpp"

#include <algorithm>
#include <system_error>

namespace engine {

namespace {

/// Waits until `value` is no longer `old`: a short while awake, as a step is short, and then
/// asleep, so that a shared machine is not kept busy.
void wait_while(const std::atomic<std::uint32_t>& value, std::uint32_t old) {
  constexpr int turns_awake = 4000;
  for (int i = 0; i < turns_awake; ++i) {
    if (value.load(std::memory_order_acquire) != old) return;
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
  }
  value.wait(old, std::memory_order_acquire);
}

int number_of_cores() {
  const unsigned cores = std::thread::hardware_concurrency();
  return cores > 0 ? static_cast<int>(cores) : 1;
}

}  // namespace

ThreadTeam::ThreadTeam(int size) : size_(size), begun_in_(static_cast<std::size_t>(size)) {
  threads_.reserve(begun_in_.size());
  try {
    for (int member = 1; member < size; ++member) {
      threads_.emplace_back([this, member] { serve(member); });
    }
  } catch (const std::system_error&) {
    // Safe although some threads are waiting already: they read the size only once a round begins.
    size_ = 1 + static_cast<int>(threads_.size());
  }
}

ThreadTeam::~ThreadTeam() {
  ends_ = true;
  ++round_;
  round_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void ThreadTeam::run(Task task) {
  if (size_ == 1) {
    task.call(task.context, 0);
    return;
  }
  task_ = task;
  unfinished_ = static_cast<std::uint32_t>(size_);
  const std::uint32_t round = ++round_;
  round_.notify_all();
  work(0, round);
  for (std::uint32_t left = unfinished_; left != 0; left = unfinished_) {
    wait_while(unfinished_, left);
  }
}

void ThreadTeam::work(int member, std::uint32_t round) {
  for (int k = 0; k < size_; ++k) {
    const int share = (member + k) % size_;
    // Whoever moves the share from the last round to this one runs it. A thread that comes late
    // finds it moved, and does not look at a task that may be another by then.
    std::uint32_t last_round = round - 1;
    if (!begun_in_[static_cast<std::size_t>(share)].compare_exchange_strong(last_round, round)) {
      continue;
    }
    task_.call(task_.context, share);
    if (--unfinished_ == 0) unfinished_.notify_one();
  }
}

void ThreadTeam::serve(int member) {
  std::uint32_t round = 0;
  while (true) {
    wait_while(round_, round);
    round = round_;
    if (ends_) return;
    work(member, round);
  }
}

int threads_for(int cells, int most) {
  constexpr int fewest_cells_of_a_thread = 1000;
  return std::clamp(cells / fewest_cells_of_a_thread, 1, most > 0 ? most : number_of_cores());
}

}  // namespace engine
