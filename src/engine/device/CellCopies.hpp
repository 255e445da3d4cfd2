// Copies of the same cells, again and again, between the tables of the host and those of a device.
// Machine is the device: Emulator, say.
#pragma once

#include <stdexcept>
#include <utility>
#include <vector>

#include "engine/Tables.hpp"
#include "engine/device/CopyCells.hpp"

namespace engine::device {

/// A column of the cells: that of the device, and that of the host.
struct CopiedColumn {
  double* own;
  Column* of_host;
};

template <class Machine>
class CellCopies {
 public:
  /// Cells by their places.
  explicit CellCopies(std::vector<int> places) : places_(std::move(places)) {
    places_on_device_.take(places_);
  }

  bool is_empty() const { return places_.empty(); }

  /// Begins to copy these columns, as they are once what was launched before is done.
  void start_home(const std::vector<CopiedColumn>& columns, Machine& machine) {
    if (is_empty()) return;
    columns_ = columns;
    values_.resize(columns.size() * places_.size());
    constexpr bool to_their_places = false;
    launch<to_their_places>(machine);
    parcel_.start(values_);
  }
  /// Returns when they are there.
  void finish_home() {
    if (is_empty()) return;
    auto value = parcel_.wait().begin();
    for (const CopiedColumn& column : columns_) {
      for (const int place : places_) (*column.of_host)[at(place)] = *value++;
    }
  }

  /// Copies columns of the host to the device.
  void take(const std::vector<CopiedColumn>& columns, Machine& machine) {
    if (is_empty()) return;
    columns_ = columns;
    taken_.clear();
    for (const CopiedColumn& column : columns) {
      for (const int place : places_) taken_.push_back((*column.of_host)[at(place)]);
    }
    values_.take(taken_);
    constexpr bool to_their_places = true;
    launch<to_their_places>(machine);
  }

 private:
  template <bool to_their_places>
  void launch(Machine& machine) {
    if (columns_.size() > CopiedCells::most_columns) throw std::logic_error("too many columns");
    CopiedCells copied = {{},
                          static_cast<int>(columns_.size()),
                          places_on_device_.data(),
                          static_cast<int>(places_.size()),
                          values_.data()};
    for (std::size_t k = 0; k < columns_.size(); ++k) copied.columns[k] = columns_[k].own;
    using Kernel = CopyCells<to_their_places>;
    machine.launch(Kernel{copied}, Kernel::blocks_for(places_.size()));
  }

  std::vector<int> places_;
  typename Machine::template Array<int> places_on_device_;
  typename Machine::template Array<double> values_;
  typename Machine::Parcel parcel_;
  std::vector<CopiedColumn> columns_;  ///< on their way
  std::vector<double> taken_;
};

}  // namespace engine::device
