#include "utils/signals.hpp"

#include <signal.h>
#include <unistd.h>

#include <atomic>

namespace utils {

namespace {

std::atomic<bool> first_is_noted = false;
std::atomic<int> noted_signal = 0;
std::atomic<bool> checkpoint_is_wished = false;
std::atomic<int> lines_under_way = 0;
/// What ends the process as soon as no line is under way: a signal, or an exit status less
/// `exit_offset`. Whoever begins a line counts it and then looks here, whoever ends the process
/// writes this and then looks at the count: one of the two sees the other.
std::atomic<int> end_to_come = 0;
constexpr int exit_offset = 1000;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "a handler may not wait for a lock");

void end_process_by(int end) {
  if (end < 0) _exit(end + exit_offset);
  signal(end, SIG_DFL);
  raise(end);  // in a handler: ends the process once the handler has returned
}

void leave_line() {
  if (--lines_under_way == 0 && end_to_come != 0) end_process_by(end_to_come);
}

[[noreturn]] void wait_for_the_end() {
  while (true) pause();
}

extern "C" void take_signal(int signal_number) {
  int none = 0;
  if (first_is_noted && noted_signal.compare_exchange_strong(none, signal_number)) return;
  const bool waits_already = end_to_come.exchange(signal_number) != 0;
  if (waits_already || lines_under_way == 0) end_process_by(signal_number);
}

void take(int signal_number) {
  struct sigaction action = {};
  sigaction(signal_number, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  action.sa_handler = take_signal;
  action.sa_flags = SA_RESTART;  // a result file being written does not notice
  sigaction(signal_number, &action, nullptr);
}

}  // namespace

void end_between_lines() {
  for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) take(signal_number);
}

void listen_for_interruption() {
  first_is_noted = true;
  end_between_lines();
}

int interrupting_signal() { return noted_signal.load(std::memory_order_relaxed); }

void listen_for_checkpoint_wishes() {
  struct sigaction action = {};
  action.sa_handler = [](int) { checkpoint_is_wished = true; };
  action.sa_flags = SA_RESTART;
  sigaction(SIGUSR1, &action, nullptr);
}

bool take_checkpoint_wish() {
  return checkpoint_is_wished.load(std::memory_order_relaxed) &&
         checkpoint_is_wished.exchange(false);
}

void let_writes_fail() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
}

void exit_between_lines(int status) {
  end_to_come = status - exit_offset;
  if (lines_under_way == 0) _exit(status);
  wait_for_the_end();
}

LineUnderWay::LineUnderWay() {
  ++lines_under_way;
  if (end_to_come == 0) return;
  leave_line();
  wait_for_the_end();
}

LineUnderWay::~LineUnderWay() { leave_line(); }

}  // namespace utils
