// A thread that writes the results of one kind while the time loop goes on: one piece of work at a
// time.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace utils {

class WriterThread {
 public:
  /// Writes a result, and answers whether that succeeded; if not, it has said so.
  using Work = std::function<bool()>;

  WriterThread();
  /// Waits for the work under way.
  ~WriterThread();
  WriterThread(const WriterThread&) = delete;
  WriterThread& operator=(const WriterThread&) = delete;

  /// Hands the next piece of work over, once the last one is done. Where the system gives no thread
  /// for it, it is done at once.
  void hand_over(Work work);
  /// Waits until all work is done: what it reads may change then.
  void wait();
  /// Whether work is under way.
  bool is_busy();

  /// Whether a result was lost, and said so: the run ends then.
  bool has_failed() const { return has_failed_; }
  void note_failure() { has_failed_ = true; }

 private:
  bool has_thread();
  void serve();
  void do_work(const Work& work);

  std::mutex mutex_;
  std::condition_variable changed_;
  Work work_;  ///< under way or to be done; empty: none
  bool ends_ = false;
  std::atomic<bool> has_failed_ = false;
  std::thread thread_;  ///< from the first piece of work on
};

/// Waits until all work of the process is done, for an early end. To be called on the main thread.
void wait_for_writers();

}  // namespace utils
