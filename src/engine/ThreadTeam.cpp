#include "engine/ThreadTeam.hpp"

#include <algorithm>
#include <cstdlib>

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

int threads_wanted() {
  if (const char* text = std::getenv("OMP_NUM_THREADS")) {
    const int wanted = std::atoi(text);
    if (wanted > 0) return wanted;
  }
  const unsigned cores = std::thread::hardware_concurrency();
  return cores > 0 ? static_cast<int>(cores) : 1;
}

}  // namespace

ThreadTeam::ThreadTeam(int size) : size_(size) {
  for (int member = 1; member < size; ++member) {
    threads_.emplace_back([this, member] { serve(member); });
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
  working_ = static_cast<std::uint32_t>(size_ - 1);
  ++round_;
  round_.notify_all();
  task.call(task.context, 0);
  for (std::uint32_t left = working_; left != 0; left = working_) wait_while(working_, left);
}

void ThreadTeam::serve(int member) {
  for (std::uint32_t round = 0;; ++round) {
    wait_while(round_, round);
    if (ends_) return;
    task_.call(task_.context, member);
    if (--working_ == 0) working_.notify_one();
  }
}

int threads_for(int cells) {
  constexpr int fewest_cells_of_a_thread = 1000;
  return std::clamp(cells / fewest_cells_of_a_thread, 1, threads_wanted());
}

}  // namespace engine
