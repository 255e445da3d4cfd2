// What is noted of the cells for a report, summed up in the memory of a device. Machine is the
// device: Emulator, say.
#pragma once

#include "engine/StepNotes.hpp"
#include "engine/device/soil_demand.hpp"

namespace engine::device {

template <class Machine>
class DeviceNotes {
 public:
  /// The notes must outlive their use here; null: none are taken.
  void take(StepNotes* notes) {
    if (notes == notes_) return;
    notes_ = notes;
    if (notes == nullptr) return;
    recovered_.take(notes->recovered);
    lifted_.take(notes->lifted);
    taken_discharge_.take(notes->taken_discharge);
  }
  void give() const {
    if (notes_ == nullptr) return;
    recovered_.give(notes_->recovered);
    lifted_.give(notes_->lifted);
    taken_discharge_.give(notes_->taken_discharge);
  }
  /// They were changed.
  void take_anew() { notes_ = nullptr; }

  StepNotes* of_host() const { return notes_; }
  NotesView view() const {
    if (notes_ == nullptr) return {};
    return {true, recovered_.data(), lifted_.data(), taken_discharge_.data()};
  }

 private:
  typename Machine::template Array<double> recovered_, lifted_, taken_discharge_;
  StepNotes* notes_ = nullptr;
};

}  // namespace engine::device
