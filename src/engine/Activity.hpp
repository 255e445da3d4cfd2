// Which patches take part in a step.
#pragma once

#include <utility>
#include <vector>

#include "engine/Tables.hpp"

namespace engine {

/// A patch takes part where one of its own cells may change, or where water stands at its border.
/// Elsewhere all fluxes are exactly zero and the step would leave every cell as it is.
class Activity {
 public:
  explicit Activity(const Tables& tables);

  /// Finds the patches of the next step.
  void find(const Tables& tables, bool it_rains);
  /// Patches that the step computes, in ascending order.
  const std::vector<int>& patches() const { return active_; }
  /// Those of them with cells that are ghosts of others, and the rest.
  const std::vector<int>& border_patches() const { return border_; }
  const std::vector<int>& interior_patches() const { return interior_; }
  /// Patches that took part in the step before, and do not in this one.
  const std::vector<int>& gone_to_rest() const { return gone_to_rest_; }
  /// Patches whose outer fluxes the step computes: those around every patch that takes part.
  const std::vector<int>& with_fluxes() const { return with_fluxes_; }
  bool takes_part(int patch) const { return marks_[at(patch)] != 0; }

  // For who finds the patches of steps elsewhere; columns over the patches.
  const std::vector<char>& marks() const { return marks_; }  ///< of those that take part
  const std::vector<char>& always_active() const { return always_active_; }
  const std::vector<char>& with_rain() const { return has_rain_; }
  /// Whether a patch takes part even where all is dry.
  bool needs_no_water(int patch, bool it_rains) const {
    return always_active_[at(patch)] != 0 || (it_rains && has_rain_[at(patch)] != 0);
  }
  bool can_change(int patch) const { return can_change_[at(patch)] != 0; }
  /// Goes on after a step that was computed elsewhere.
  void set(std::vector<char> marks, std::vector<char> can_change);
  /// The same of who does not ask yet which patches may change.
  void set_marks(std::vector<char> marks);

  /// It rains on other cells than before.
  void find_rain(const Tables& tables);
  /// The states have changed otherwise than by a step.
  void wake_all() { can_change_.assign(can_change_.size(), 1); }
  /// The same of some patches alone, by their marks: the others are at rest.
  void wake(std::vector<char> marks) { can_change_ = std::move(marks); }
  /// Whether a patch may change in the next step without inflow, or took part in the last one, and
  /// is noted once more as it comes to rest.
  bool is_awake(int patch) const { return can_change(patch) || takes_part(patch); }
  /// After its step: whether a patch may change in the next one without inflow.
  void set_can_change(int patch, bool can_change) { can_change_[at(patch)] = can_change; }

 private:
  bool takes_inflow(const Tables& tables, const Patch& patch) const;
  bool touches_mark(const Tables& tables, const Patch& patch) const;

  std::vector<char> can_change_;     ///< per patch, by the state of its own cells
  std::vector<char> always_active_;  ///< per patch: inflow, or a soil that recovers
  std::vector<char> has_rain_;
  std::vector<char> marks_;
  std::vector<int> active_, border_, interior_, with_fluxes_, gone_to_rest_;
};

}  // namespace engine
