// Copies of some cells from the tables of a device to those of the host. Machine is the device:
// Emulator, say.
#pragma once

#include <span>
#include <vector>

#include "engine/Tables.hpp"
#include "engine/device/ListedCells.hpp"

namespace engine::device {

/// A column of the cells: that of the device, and that of the host.
struct CopiedColumn {
  double* own;
  Column* of_host;
};

template <class Machine>
class CellCopies {
 public:
  /// Copies columns of the cells at these places.
  void bring_home(const std::vector<CopiedColumn>& columns, std::span<const int> places,
                  Machine& machine) {
    if (places.empty() || columns.empty()) return;
    cells_.list(places);
    own_.clear();
    for (const CopiedColumn& column : columns) own_.push_back(column.own);
    cells_.pack(own_, values_, machine);
    at_home_.resize(values_.size());
    values_.give(at_home_);
    auto value = at_home_.begin();
    for (const int place : places) {
      for (const CopiedColumn& column : columns) (*column.of_host)[at(place)] = *value++;
    }
  }

 private:
  ListedCells<Machine> cells_;
  std::vector<double*> own_;
  typename Machine::template Array<double> values_;
  std::vector<double> at_home_;
};

}  // namespace engine::device
