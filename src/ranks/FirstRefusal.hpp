// What ends the reading of a file that ranks share: of all that they refuse, what whole reading
// would meet first.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>

#include "case/Mesh.hpp"
#include "ranks/Group.hpp"
#include "ranks/in_step.hpp"

namespace ranks {

class FirstRefusal {
 public:
  /// Comes before all records.
  static constexpr cases::Number at_start = -1;
  /// Behind the last record that any file can have.
  static constexpr std::int64_t none = std::int64_t{1} << 40;

  /// Calls read(), which asks nothing of other ranks; an exception is kept with the record that
  /// this rank read then, unless an earlier one is kept.
  template <class Read, class RecordNow>
  void keep(const Read& read, const RecordNow& record_now) {
    try {
      read();
    } catch (...) {
      const std::int64_t record = record_now();
      if (record >= record_) return;
      record_ = record;
      error_ = std::current_exception();
    }
  }
  /// The first record that any rank refuses; `none` if all are well. Called by all ranks.
  std::int64_t record_of_all(Group& group) const;
  /// Throws what that rank kept, on all ranks, if anything, as a Refusal. Called by all ranks.
  void end(Group& group) const;

 private:
  std::int64_t record_ = none;
  std::exception_ptr error_;
};

/// Does on every rank what each does for itself, without asking others; where one of them fails,
/// all do.
void do_together(Group& group, const std::function<void()>& step);

}  // namespace ranks
