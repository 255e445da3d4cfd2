// A NetCDF file whose definitions are known, and that takes values.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace ugrid {

class DataFile {
 public:
  virtual ~DataFile() = default;

  /// All values of a variable, by its number, or, where it grows, those of a record.
  virtual void put(std::size_t variable, std::size_t record, std::span<const int> values) = 0;
  virtual void put(std::size_t variable, std::size_t record, std::span<const float> values) = 0;
  virtual void put(std::size_t variable, std::size_t record, std::span<const double> values) = 0;
  /// All characters of a variable that does not grow.
  virtual void put(std::size_t variable, std::string_view characters) = 0;
};

}  // namespace ugrid
