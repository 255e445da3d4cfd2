// Which patches take part in the steps of a device, in its memory, and what they find. Machine is
// the device: Emulator, say.
#pragma once

#include <utility>
#include <vector>

#include "engine/Activity.hpp"
#include "engine/StepNotes.hpp"
#include "engine/device/FindActive.hpp"

namespace engine::device {

template <class Machine>
class DeviceActivity {
 public:
  explicit DeviceActivity(const Tables& tables) : findings_at_home_(patches_of(tables).size()) {
    std::vector<char> border, interior;
    for (const Patch& patch : patches_of(tables)) {
      border.push_back(patch.is_border ? 1 : 0);
      interior.push_back(patch.is_border ? 0 : 1);
    }
    is_border_.take(border);
    is_interior_.take(interior);
    goes_to_rest_.resize(patch_count());
    edges_found_.take(std::vector<EdgeFound>(patch_count()));
  }

  void take(const Activity& activity) {
    takes_part_.take(activity.marks());
    always_active_.take(activity.always_active());
    has_rain_.take(activity.with_rain());
    for (std::size_t p = 0; p < patch_count(); ++p) {
      findings_at_home_[p].changing_cells = activity.can_change(static_cast<int>(p)) ? 1 : 0;
    }
    findings_.take(findings_at_home_);
  }
  void give(Activity& activity) {
    findings_.give(findings_at_home_);
    std::vector<char> can_change;
    for (const PatchFindings& of_patch : findings_at_home_) {
      can_change.push_back(of_patch.changing_cells > 0);
    }
    activity.set(marks(), std::move(can_change));
  }
  /// Which patches took part in the last step alone.
  void give_marks(Activity& activity) const { activity.set_marks(marks()); }
  /// What those of them tell for notes.
  void give_notes(const Activity& activity, StepNotes& notes) {
    findings_.give(findings_at_home_);
    for (const int p : activity.patches()) {
      notes.smallest_steps[at(p)] = findings_at_home_[at(p)].smallest_step;
      notes.extremes[at(p)] = findings_at_home_[at(p)].extremes;
    }
  }

  ActivityView view(const int* neighbours) const {
    return {always_active_.data(), has_rain_.data(),     is_border_.data(), neighbours,
            takes_part_.data(),    goes_to_rest_.data(), findings_.data()};
  }
  // Columns over the patches.
  const char* takes_part() const { return takes_part_.data(); }
  const char* goes_to_rest() const { return goes_to_rest_.data(); }
  const char* is_border() const { return is_border_.data(); }
  const char* is_interior() const { return is_interior_.data(); }
  PatchFindings* findings() const { return findings_.data(); }
  EdgeFound* edges_found() const { return edges_found_.data(); }  ///< of outer fluxes

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;

  static const std::vector<Patch>& patches_of(const Tables& tables) {
    return tables.patches.patches;
  }
  std::size_t patch_count() const { return findings_at_home_.size(); }
  std::vector<char> marks() const {
    std::vector<char> marks(patch_count());
    takes_part_.give(marks);
    return marks;
  }

  std::vector<PatchFindings> findings_at_home_;
  Array<char> is_border_, is_interior_, takes_part_, goes_to_rest_, always_active_, has_rain_;
  Array<PatchFindings> findings_;
  Array<EdgeFound> edges_found_;
};

}  // namespace engine::device
