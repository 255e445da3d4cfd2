// The hand-off between the time loop and the writer threads: a writer copies the states it needs,
// signals, and formats and writes while the loop goes on.
#pragma once

#include <atomic>
#include <exception>
#include <iostream>
#include <semaphore>
#include <string>
#include <system_error>
#include <thread>

/// Where each kind of writer stands.
namespace Thread {
inline constexpr int never_started = -1;
inline constexpr int finished = 0;
inline constexpr int started = 1;     ///< has not yet copied
inline constexpr int copy_taken = 2;  ///< the loop has seen that the writer copied

extern std::atomic<int> state_gauge, state_picture, state_monitorSection, state_Umax;
extern std::thread gauge, picture, monitorSection, Umax;

/// Set by a writer that met a fatal error and has said so; the loop then ends the run.
extern std::atomic<bool> has_failed;
}  // namespace Thread

/// One permit per kind: taken by the loop, given back by the writer. A mutex may not be released
/// by another thread; a semaphore may.
namespace Mutex {
extern std::binary_semaphore gauge, picture, monitorSection, Umax;
}

/// Says, once, that the system gives no thread for a writer.
void warn_of_missing_thread(const std::system_error& error);

/// The three pieces of one kind's hand-off, with the steps of the protocol.
struct WriterHandoff {
  std::atomic<int>& state;
  std::binary_semaphore& permit;
  std::thread& thread;

  /// Loop: waits for the previous writer of this kind to end.
  void join() {
    if (state >= Thread::finished && thread.joinable()) thread.join();
  }

  /// Loop: starts a writer, which must call release() once and then end. Where the system gives no
  /// thread for it, it writes at once, before the loop goes on.
  template <class Writer>
  void start(const Writer& writer) {
    join();
    state = Thread::started;
    permit.acquire();
    try {
      thread = std::thread([this, writer] { run(writer); });
    } catch (const std::system_error& error) {
      warn_of_missing_thread(error);
      run(writer);
    }
  }

  /// Writer: its copy is taken, the loop may change the cells. Nothing before it may throw.
  void release() { permit.release(); }

  /// Loop, before it changes a cell: waits until a started writer has its copy.
  void wait_for_copy() {
    if (state != Thread::started) return;
    permit.acquire();
    int expected = Thread::started;  // the writer may have finished meanwhile
    state.compare_exchange_strong(expected, Thread::copy_taken);
    permit.release();
  }

 private:
  template <class Writer>
  void run(const Writer& writer) {
    try {
      writer();
    } catch (const std::exception& error) {
      std::cerr << std::string("Error. A writer of results failed: ") + error.what() + "\n";
      Thread::has_failed = true;
    }
    state = Thread::finished;
  }
};

namespace Handoff {
extern WriterHandoff gauge, picture, monitorSection, Umax;

/// Loop, between the fluxes and the first change of a cell: waits for every copy under way.
void wait_for_copies();
/// Loop, at the end: waits for every writer to finish its file.
void join_all();
}  // namespace Handoff
