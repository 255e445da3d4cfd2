// Values of all cells, field by field, in memory.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "fields/Field.hpp"

namespace fields {

/// One value per cell in the column of every field that is there; the others are empty.
class Columns {
 public:
  const std::vector<double>& operator[](Field field) const {
    return columns_[static_cast<std::size_t>(field)];
  }
  std::vector<double>& operator[](Field field) { return columns_[static_cast<std::size_t>(field)]; }

 private:
  std::array<std::vector<double>, field_table.size()> columns_;
};

}  // namespace fields
