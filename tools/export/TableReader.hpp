// Reads a result table row by row, in a small memory whatever its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <string_view>

namespace exports {

/// Every error names the file, the line and the column.
class TableReader {
 public:
  /// Whether a row may hold nan, as that of a gauge without a cell does.
  enum class Missing { refused, allowed };

  explicit TableReader(const std::string& name, Missing missing = Missing::refused);

  /// The next line as it stands, without its line end; false at the end of the file. It holds until
  /// the next line is read.
  bool next_line(std::string_view& line);
  /// The numbers of the next row, which must be as many as `values`, separated by blanks or tabs;
  /// false at the end of the file.
  bool next_row(std::span<double> values);

  /// Refuses the line read last: "Error in file F, line L" + what.
  [[noreturn]] void refuse(const std::string& what) const;
  const std::string& name() const { return name_; }

 private:
  bool fill();

  std::string name_;
  Missing missing_;
  std::ifstream file_;
  std::string buffer_;
  std::size_t begin_ = 0, end_ = 0;   ///< what is read and not yet handed out
  std::uintmax_t n_read_ = 0;         ///< bytes of the file
  std::uintmax_t size_at_start_ = 0;  ///< of the file
  long line_ = 0;                     ///< number of the line read last
};

}  // namespace exports
