#include "utils/WriterThread.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iostream>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace utils {

namespace {

/// All that live. Never destroyed: a process may end by exit() while writers live.
struct Writers {
  std::mutex mutex;
  std::vector<WriterThread*> list;
};
Writers& writers = *new Writers;

/// They live as long as their thread does nothing else.
std::vector<WriterThread*> writers_of_this_thread() {
  const std::lock_guard lock(writers.mutex);
  std::vector<WriterThread*> own;
  std::copy_if(writers.list.begin(), writers.list.end(), std::back_inserter(own),
               [](const WriterThread* writer) { return writer->belongs_to_this_thread(); });
  return own;
}

void tell_failure(const std::exception& error) {
  std::cerr << std::string("Error. A writer of results failed: ") + error.what() + "\n";
}

/// How many have work that comes in pieces.
std::atomic<int> work_in_pieces = 0;

void warn_of_missing_thread(const std::system_error& error) {
  static std::atomic_flag is_said;
  if (is_said.test_and_set()) return;
  std::cerr << std::string("Warning: a thread that writes results couldn't be started (") +
                   error.code().message() +
                   "). The run waits for such results instead; they stay the same.\n";
}

}  // namespace

WriterThread::WriterThread() {
  const std::lock_guard lock(writers.mutex);
  writers.list.push_back(this);
}

WriterThread::~WriterThread() {
  {
    const std::lock_guard lock(writers.mutex);
    std::erase(writers.list, this);
  }
  wait();
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void WriterThread::hand_over(Work work) {
  wait();
  start(std::move(work), false);
}

void WriterThread::start(Work work, bool has_more) {
  const bool is_for_thread = has_thread();
  if (!is_for_thread) do_work(work);
  {
    const std::lock_guard lock(mutex_);
    has_more_ = has_more;
    if (is_for_thread) work_ = std::move(work);
  }
  changed_.notify_all();
}

void WriterThread::hand_over_pieces(Pieces pieces) {
  wait();
  pieces_ = std::move(pieces);
  ++work_in_pieces;
  {
    const std::lock_guard lock(mutex_);
    has_more_ = true;
  }
  go_on();
}

bool WriterThread::can_go_on() {
  if (!pieces_) return false;
  const std::lock_guard lock(mutex_);
  return !work_;
}

void WriterThread::go_on() {
  if (!can_go_on()) return;
  std::optional<Piece> piece = next_piece();
  if (!piece) return;
  if (piece->is_last) {
    pieces_ = nullptr;
    --work_in_pieces;
  }
  start(std::move(piece->work), !piece->is_last);
}

/// Behind a piece that failed none is written; where the next cannot be had, it is the last.
std::optional<WriterThread::Piece> WriterThread::next_piece() {
  const Work failure = [] { return false; };
  try {
    std::optional<Piece> piece = pieces_();
    if (piece && has_failed_) piece->work = failure;
    return piece;
  } catch (const std::exception& error) {
    tell_failure(error);
    return Piece{failure, true};
  }
}

void WriterThread::wait() {
  constexpr std::chrono::milliseconds pause{1};
  while (belongs_to_this_thread() && work_in_pieces > 0 && is_busy()) {
    // What is waited for may wait for another writer: none stands still meanwhile.
    go_on();
    go_on_with_writers();
    std::unique_lock lock(mutex_);
    if (!work_ && !has_more_) return;
    if (work_) {
      changed_.wait_for(lock, pause, [this] { return !work_; });
    } else {
      lock.unlock();
      std::this_thread::sleep_for(pause);
    }
  }
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !work_ && !has_more_; });
}

bool WriterThread::is_busy() {
  const std::lock_guard lock(mutex_);
  return work_ || has_more_;
}

bool WriterThread::has_thread() {
  if (thread_.joinable()) return true;
  try {
    thread_ = std::thread([this] { serve(); });
  } catch (const std::system_error& error) {
    warn_of_missing_thread(error);
  }
  return thread_.joinable();
}

void WriterThread::serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return work_ || ends_; });
    if (!work_) return;
    lock.unlock();
    do_work(work_);
    lock.lock();
    work_ = nullptr;
    changed_.notify_all();
  }
}

void WriterThread::do_work(const Work& work) {
  try {
    if (!work()) has_failed_ = true;
  } catch (const std::exception& error) {
    tell_failure(error);
    has_failed_ = true;
  }
}

void go_on_with_writers() {
  if (work_in_pieces == 0) return;
  for (WriterThread* const writer : writers_of_this_thread()) writer->go_on();
}

bool can_go_on_with_writers() {
  if (work_in_pieces == 0) return false;
  const std::vector<WriterThread*> own = writers_of_this_thread();
  return std::any_of(own.begin(), own.end(), [](WriterThread* w) { return w->can_go_on(); });
}

void wait_for_writers() {
  for (WriterThread* const writer : writers_of_this_thread()) writer->wait();
}

}  // namespace utils
