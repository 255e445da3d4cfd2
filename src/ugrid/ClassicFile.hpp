// A classic NetCDF file that grows record by record and can be read at any moment: nothing that a
// reader sees is written a second time, but for the number of records, which comes last.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ugrid/ClassicLayout.hpp"
#include "ugrid/DataFile.hpp"
#include "utils/WordSum.hpp"
#include "utils/WritableFile.hpp"

namespace ugrid {

class ClassicFile : public DataFile {
 public:
  /// Of an open file, which must outlive it.
  ClassicFile(utils::WritableFile& file, ClassicLayout layout);

  /// Writes the header of a file without records.
  void begin();
  /// Goes on in a file of this header behind its first records; those that follow are cut off.
  void go_on(std::uint64_t records);

  void put(std::size_t variable, std::size_t record, std::span<const int> values) override;
  void put(std::size_t variable, std::size_t record, std::span<const float> values) override;
  void put(std::size_t variable, std::size_t record, std::span<const double> values) override;
  void put(std::size_t variable, std::string_view characters) override;
  /// Some values, from the one with a number on.
  void put_part(std::size_t variable, std::size_t record, std::size_t first,
                std::span<const int> values);
  void put_part(std::size_t variable, std::size_t record, std::size_t first,
                std::span<const float> values);
  void put_part(std::size_t variable, std::size_t record, std::size_t first,
                std::span<const double> values);
  /// Of the record that was put last, its first variable before all others: what
  /// checksum_of_record() finds, without reading it again.
  std::uint64_t checksum() const { return sum_.value(); }
  /// Lets readers see so many records, once all that was put lies on the disk.
  void show(std::uint64_t records);

  /// Number of the error of what could not be written first; nothing is written after it. A record
  /// that is not complete is cut off.
  int error() const { return error_; }

 private:
  template <class Bits, class Value>
  void put_values(std::size_t variable, std::size_t record, std::size_t first,
                  std::span<const Value> values);
  void write_at(std::uint64_t place, std::string_view bytes);
  void write_count();

  utils::WritableFile& file_;
  ClassicLayout layout_;
  std::uint64_t shown_ = 0;  ///< records
  int error_ = 0;
  std::vector<char> piece_;
  utils::WordSum sum_;  ///< of the last record so far
};

/// Why a file cannot be continued behind so many records, as the end of a sentence that begins with
/// its name; empty where it can.
std::string fault_of_start(const std::string& name, const ClassicLayout& layout,
                           std::uint64_t records);

/// The checksum of a record of a file, by its number; none where it cannot be read as a whole.
std::optional<std::uint64_t> checksum_of_record(const std::string& name,
                                                const ClassicLayout& layout, std::uint64_t record);

}  // namespace ugrid
