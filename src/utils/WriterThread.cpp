#include "utils/WriterThread.hpp"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

namespace utils {

namespace {

/// All that live. Never destroyed: a process may end by exit() while writers live.
struct Writers {
  std::mutex mutex;
  std::vector<WriterThread*> list;
};
Writers& writers = *new Writers;

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
  if (!has_thread()) {
    do_work(work);
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    work_ = std::move(work);
  }
  changed_.notify_all();
}

void WriterThread::wait() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !work_; });
}

bool WriterThread::is_busy() {
  const std::lock_guard lock(mutex_);
  return static_cast<bool>(work_);
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
    std::cerr << std::string("Error. A writer of results failed: ") + error.what() + "\n";
    has_failed_ = true;
  }
}

void wait_for_writers() {
  const std::lock_guard lock(writers.mutex);
  for (WriterThread* const writer : writers.list) writer->wait();
}

}  // namespace utils
