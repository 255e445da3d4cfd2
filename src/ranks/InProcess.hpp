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

/// Where ranks wait for each other, until one of them breaks up the meeting.
class Meeting {
 public:
  /// Calls look() for this rank alone; afterwards others look again at what they wait for.
  template <class Look>
  void change(const Look& look) {
    const std::lock_guard lock(mutex_);
    look();
    changed_.notify_all();
  }
  /// The same, as soon as is_there() says so. Throws BrokenGroup where that does not come.
  template <class IsThere, class Look>
  void change_when(const IsThere& is_there, const Look& look) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return is_broken_ || is_there(); });
    if (is_broken_) throw BrokenGroup();
    look();
    changed_.notify_all();
  }

  void break_up() {
    change([this] { is_broken_ = true; });
  }
  bool is_broken() const {
    const std::lock_guard lock(mutex_);
    return is_broken_;
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool is_broken_ = false;
};

/// Room for one message from one rank to another.
template <class Value>
class Mailbox {
 public:
  explicit Mailbox(Meeting& meeting) : meeting_(meeting) {}

  /// Calls write(values) on the empty message, as soon as the last one has been taken.
  template <class Write>
  void post(const Write& write) {
    const auto put = [&] {
      values_.clear();
      write(values_);
      is_full_ = true;
    };
    meeting_.change_when([this] { return !is_full_; }, put);
  }
  /// Calls read(values) on the message, as soon as there is one.
  template <class Read>
  void take(const Read& read) {
    const auto get = [&] {
      read(values_);
      is_full_ = false;
    };
    meeting_.change_when([this] { return is_full_; }, get);
  }

 private:
  Meeting& meeting_;
  bool is_full_ = false;
  std::vector<Value> values_;
};

/// The mailboxes between ranks, made as they are asked for.
template <class Value>
class Mailboxes {
 public:
  explicit Mailboxes(Meeting& meeting) : meeting_(meeting) {}

  Mailbox<Value>& between(int from, int to) {
    const std::lock_guard lock(mutex_);
    return boxes_.try_emplace({from, to}, meeting_).first->second;
  }

 private:
  Meeting& meeting_;
  std::mutex mutex_;
  std::map<std::pair<int, int>, Mailbox<Value>> boxes_;
};

/// What a number of ranks tell, made one, round by round.
template <class Value>
class Reduction {
 public:
  Reduction(Meeting& meeting, int ranks) : meeting_(meeting), ranks_(ranks) {}

  /// To be called by every rank; unite(a, b) knows no order.
  template <class Unite>
  void tell(const Value& own, const Unite& unite) {
    meeting_.change([&] {
      present_ = told_ == 0 ? own : unite(present_, own);
      if (++told_ < ranks_) return;
      last_ = present_;
      told_ = 0;
      ++rounds_;
    });
  }
  /// What came of the round with this number, from 0 on; every rank waits for every round.
  Value wait(long round) {
    Value found{};
    // Nobody ends the next round before all have seen this one.
    meeting_.change_when([&] { return rounds_ > round; }, [&] { found = last_; });
    return found;
  }

 private:
  Meeting& meeting_;
  const int ranks_;
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
