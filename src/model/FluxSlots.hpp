// The flux slots of a cell: one per interface, where the interface leaves its inflow.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "model/HydraulicVariableSWE.hpp"

/// Slots are zero until they are written, and take no memory until then: the cells of a model that
/// runs on tables never do.
class FluxSlots {
 public:
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  /// New slots are zero.
  void resize(std::size_t size) {
    if (slots_) {
      auto slots = std::make_unique<HydraulicVariableSWE[]>(size);
      std::copy_n(slots_.get(), std::min<std::size_t>(size, size_), slots.get());
      slots_ = std::move(slots);
    }
    size_ = static_cast<std::uint32_t>(size);
  }
  void add() { resize(size_ + 1); }
  void clear() { resize(0); }

  HydraulicVariableSWE& operator[](std::size_t i) {
    if (!slots_) slots_ = std::make_unique<HydraulicVariableSWE[]>(size_);
    return slots_[i];
  }
  const HydraulicVariableSWE& operator[](std::size_t i) const {
    static constexpr HydraulicVariableSWE zero;
    return slots_ ? slots_[i] : zero;
  }

 private:
  std::unique_ptr<HydraulicVariableSWE[]> slots_;
  std::uint32_t size_ = 0;
};
