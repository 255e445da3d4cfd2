#include "globals/WriterHandoff.hpp"

namespace Thread {
std::atomic<int> state_gauge = never_started;
std::atomic<int> state_picture = never_started;
std::atomic<int> state_monitorSection = never_started;
std::atomic<int> state_Umax = never_started;
std::thread gauge, picture, monitorSection, Umax;
std::atomic<bool> has_failed = false;
}  // namespace Thread

void warn_of_missing_thread(const std::system_error& error) {
  static std::atomic_flag is_said;
  if (is_said.test_and_set()) return;
  std::cerr << std::string("Warning: a thread that writes results couldn't be started (") +
                   error.code().message() +
                   "). The run waits for such results instead; they stay the same.\n";
}

namespace Mutex {
std::binary_semaphore gauge{1}, picture{1}, monitorSection{1}, Umax{1};
}

namespace Handoff {
WriterHandoff gauge{Thread::state_gauge, Mutex::gauge, Thread::gauge};
WriterHandoff picture{Thread::state_picture, Mutex::picture, Thread::picture};
WriterHandoff monitorSection{Thread::state_monitorSection, Mutex::monitorSection,
                             Thread::monitorSection};
WriterHandoff Umax{Thread::state_Umax, Mutex::Umax, Thread::Umax};

void wait_for_copies() {
  monitorSection.wait_for_copy();
  Umax.wait_for_copy();
  gauge.wait_for_copy();
  picture.wait_for_copy();
}

void join_all() {
  gauge.join();
  picture.join();
  monitorSection.join();
  Umax.join();
}
}  // namespace Handoff
