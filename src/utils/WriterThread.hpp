// A thread that writes the results of one kind while the time loop goes on: one piece of work at a
// time.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace utils {

class WriterThread {
 public:
  /// Writes a result, and answers whether that succeeded; if not, it has said so.
  using Work = std::function<bool()>;

  /// A part of a result whose rest is not there yet.
  struct Piece {
    Work work;
    bool is_last = false;
  };
  /// The next part; nothing as long as it is not there.
  using Pieces = std::function<std::optional<Piece>()>;

  /// It belongs to the thread that makes it, the one of the steps, as all calls but wait().
  WriterThread();
  /// Waits for the work under way.
  ~WriterThread();
  WriterThread(const WriterThread&) = delete;
  WriterThread& operator=(const WriterThread&) = delete;

  /// Hands the next piece of work over, once the last one is done. Where the system gives no thread
  /// for it, it is done at once.
  void hand_over(Work work);
  /// The same of work that comes in pieces. The next one is asked for when the one before is done:
  /// in go_on_with_writers(), and as long as the owner waits for any writer. Behind one that failed
  /// the rest is left out.
  void hand_over_pieces(Pieces pieces);
  void go_on();
  /// Whether that would ask for the next piece.
  bool can_go_on();
  /// Waits until all work is done: what it reads may change then. Any thread may wait as long as
  /// the owner goes on.
  void wait();
  /// Whether work is under way.
  bool is_busy();
  bool belongs_to_this_thread() const { return owner_ == std::this_thread::get_id(); }

  /// Whether a result was lost, and said so: the run ends then.
  bool has_failed() const { return has_failed_; }
  void note_failure() { has_failed_ = true; }

 private:
  std::optional<Piece> next_piece();
  void start(Work work, bool has_more);
  bool has_thread();
  void serve();
  void do_work(const Work& work);

  std::mutex mutex_;
  std::condition_variable changed_;
  Work work_;              ///< under way or to be done; empty: none
  bool has_more_ = false;  ///< pieces that are not there yet
  Pieces pieces_;          ///< they come from; for the owner
  const std::thread::id owner_ = std::this_thread::get_id();
  bool ends_ = false;
  std::atomic<bool> has_failed_ = false;
  std::thread thread_;  ///< from the first piece of work on
};

/// Those of the calling thread. They do what they can of work that comes in pieces; to be called
/// after every step. It waits for nothing.
void go_on_with_writers();
/// Whether any of them would ask for the next piece.
bool can_go_on_with_writers();
/// Waits until all their work is done, for an early end.
void wait_for_writers();

}  // namespace utils
