// Ranks that are threads of one process: for tests of what ranks do.
#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "ranks/Group.hpp"

namespace ranks {

/// Room for one message from one rank to another.
template <class Value>
class Mailbox {
 public:
  /// Calls write(values) on the empty message, as soon as the last one has been taken.
  template <class Write>
  void post(const Write& write) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !is_full_; });
    values_.clear();
    write(values_);
    is_full_ = true;
    changed_.notify_all();
  }
  /// Calls read(values) on the message, as soon as there is one.
  template <class Read>
  void take(const Read& read) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return is_full_; });
    read(values_);
    is_full_ = false;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool is_full_ = false;
  std::vector<Value> values_;
};

/// The mailboxes between ranks, made as they are asked for.
template <class Value>
class Mailboxes {
 public:
  Mailbox<Value>& between(int from, int to) {
    const std::lock_guard lock(mutex_);
    return boxes_[{from, to}];
  }

 private:
  std::mutex mutex_;
  std::map<std::pair<int, int>, Mailbox<Value>> boxes_;
};

/// What a number of ranks tell, made one, round by round.
template <class Value>
class Reduction {
 public:
  explicit Reduction(int ranks) : ranks_(ranks) {}

  /// To be called by every rank; unite(a, b) knows no order.
  template <class Unite>
  void tell(const Value& own, const Unite& unite) {
    const std::lock_guard lock(mutex_);
    present_ = told_ == 0 ? own : unite(present_, own);
    if (++told_ < ranks_) return;
    last_ = present_;
    told_ = 0;
    ++rounds_;
    changed_.notify_all();
  }
  /// What came of the round with this number, from 0 on; every rank waits for every round.
  Value wait(long round) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return rounds_ > round; });
    return last_;  // nobody ends the next round before all have seen this one
  }

 private:
  const int ranks_;
  std::mutex mutex_;
  std::condition_variable changed_;
  long rounds_ = 0;  ///< that are complete
  int told_ = 0;     ///< in the present round
  Value present_{}, last_{};
};

/// A number of ranks, which may then run in threads of their own.
class InProcess {
 public:
  /// Whose exchanges may say that they take the memory of a card: they take that of an emulated
  /// one.
  explicit InProcess(int ranks, bool takes_memory_of_card = false);
  ~InProcess();

  /// As one of the ranks sees them; once for each.
  std::unique_ptr<Group> group(int rank);

 private:
  class Member;
  class MemberExchange;
  struct Shared;

  std::shared_ptr<Shared> shared_;
};

}  // namespace ranks
