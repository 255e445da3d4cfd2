#include "utils/signals.hpp"

#include <signal.h>

#include <atomic>

namespace utils {

namespace {

std::atomic<int> noted_signal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a handler may not wait for a lock");

extern "C" void note_signal(int signal_number) {
  int none = 0;
  if (noted_signal.compare_exchange_strong(none, signal_number)) return;
  signal(signal_number, SIG_DFL);
  raise(signal_number);  // ends the process once this handler has returned
}

void listen_for(int signal_number) {
  struct sigaction action = {};
  sigaction(signal_number, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  action.sa_handler = note_signal;
  action.sa_flags = SA_RESTART;  // a result file being written does not notice
  sigaction(signal_number, &action, nullptr);
}

}  // namespace

void listen_for_interruption() {
  listen_for(SIGINT);
  listen_for(SIGTERM);
}

int interrupting_signal() { return noted_signal.load(std::memory_order_relaxed); }

}  // namespace utils
