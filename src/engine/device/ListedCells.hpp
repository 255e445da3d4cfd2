// Cells by their places, and their values packed in the memory of a device. Machine is the device:
// Emulator, say.
#pragma once

#include <span>
#include <stdexcept>
#include <vector>

#include "engine/device/CopyCells.hpp"

namespace engine::device {

template <class Machine>
class ListedCells {
 public:
  using Numbers = typename Machine::template Array<double>;

  void list(std::span<const int> places) { places_.take(places); }
  std::size_t size() const { return places_.size(); }

  /// Columns of the cells into values, which get the size for them.
  void pack(const std::vector<double*>& columns, Numbers& values, Machine& machine) const {
    values.resize(size() * columns.size());
    using Kernel = CopyCells<false>;
    machine.launch(Kernel{copied(columns, values), {}}, Kernel::blocks_for(size()));
  }
  /// Values to their places, and a bed that is laid there.
  void unpack(const Numbers& values, const std::vector<double*>& columns, const BedColumns& laid,
              Machine& machine) const {
    using Kernel = CopyCells<true>;
    machine.launch(Kernel{copied(columns, values), laid}, Kernel::blocks_for(size()));
  }

 private:
  CopiedCells copied(const std::vector<double*>& columns, const Numbers& values) const {
    if (columns.size() > CopiedCells::most_columns) throw std::logic_error("too many columns");
    CopiedCells copied = {.columns = {},
                          .column_count = static_cast<int>(columns.size()),
                          .places = places_.data(),
                          .cells = static_cast<int>(size()),
                          .values = values.data()};
    for (std::size_t k = 0; k < columns.size(); ++k) copied.columns[k] = columns[k];
    return copied;
  }

  typename Machine::template Array<int> places_;
};

}  // namespace engine::device
