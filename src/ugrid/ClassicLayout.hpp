// Where everything stands in a classic NetCDF file with 64-bit offsets ("CDF-2"): of "NetCDF
// Classic and 64-bit Offset File Formats", OGC 10-092r3, chapter 4. Behind the header come the
// variables that do not grow, then the records, each with a piece of every variable that grows.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ugrid/Definitions.hpp"

namespace ugrid {

struct ClassicLayout {
  /// Of the number of records in the header: 32 bits.
  static constexpr std::uint64_t place_of_count = 4;

  std::string header;                 ///< of a file without records
  std::vector<std::uint64_t> places;  ///< of the variables, of those that grow in the first record
  std::vector<bool> grows;            ///< of the variables
  std::uint64_t begin_of_records = 0;
  std::uint64_t record_size = 0;  ///< bytes

  std::uint64_t place(std::size_t variable, std::uint64_t record) const {
    return places[variable] + (grows[variable] ? record * record_size : 0);
  }
  std::uint64_t end_of_record(std::uint64_t count) const {
    return begin_of_records + count * record_size;
  }
};

/// Throws std::length_error for a variable of 4 GiB or more, in one record, which the format cannot
/// hold.
ClassicLayout classic_layout(const Definitions& definitions);

// Numbers as they stand in the file, their highest byte first.
inline std::uint32_t as_in_file(std::uint32_t number) {
  return std::endian::native == std::endian::big ? number : __builtin_bswap32(number);
}
inline std::uint64_t as_in_file(std::uint64_t number) {
  return std::endian::native == std::endian::big ? number : __builtin_bswap64(number);
}

}  // namespace ugrid
