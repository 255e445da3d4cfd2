// The one rule for what goes wrong where ranks do something together: either all of them refuse it,
// and are ready for what comes next, or the rank that fails breaks up their group.
#pragma once

#include <exception>
#include <utility>

#include "ranks/Group.hpp"
#include "utils/stop.hpp"

namespace ranks {

/// What a run that ends with this exception says.
utils::FatalError told_by(const std::exception_ptr& error);

/// What all ranks refuse: thrown on each of them at the same place.
class Refusal : public utils::FatalError {
 public:
  explicit Refusal(const utils::FatalError& told) : FatalError(told) {}
  /// What this rank met itself, as it was.
  explicit Refusal(std::exception_ptr met) : FatalError(told_by(met)), met_(std::move(met)) {}

  [[noreturn]] void rethrow() const {
    if (met_) std::rethrow_exception(met_);
    throw utils::FatalError(*this);
  }

 private:
  std::exception_ptr met_;
};

/// On rank 0: does its part of what all ranks do together. What they refuse comes out as it was.
/// With anything else that this throws the group is broken, and nothing is done in it any more.
template <class Do>
decltype(auto) in_step(Group& group, const Do& do_it) {
  if (group.is_broken()) throw BrokenGroup();
  try {
    return do_it();
  } catch (const Refusal& refusal) {
    refusal.rethrow();
  } catch (...) {
    group.break_up();
    throw;
  }
}

}  // namespace ranks
