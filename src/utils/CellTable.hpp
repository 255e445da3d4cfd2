// A result table with a row per cell: its centre and the level of its bed, then values.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "utils/OutputFile.hpp"

namespace utils {

/// Projected coordinates keep their millimetres: a row whose x is 1000 m or more (in size) writes
/// its centre with three decimals; everything else has six significant digits.
class CellTable {
 public:
  /// Where the third column comes from.
  enum class Bed { z_of_the_centre, first_value };

  CellTable(const std::string& name, std::string_view header, Bed bed = Bed::z_of_the_centre);

  void add_row(double x, double y, double z, std::span<const double> values);
  /// Adds rows that put_row() made.
  void add_rows(std::string_view rows);
  /// Puts the complete file in its place; see WholeFile.
  bool commit() { return file_.commit(text_); }

  // The same of a table to which nothing was added, and whose header and rows several processes
  // write; see WholeFile.
  std::optional<SharedPart> share() { return file_.share(); }
  void unshare() { file_.unshare(); }
  bool commit_shared(std::uint64_t size, int error) { return file_.commit_shared(size, error); }

 private:
  WholeFile file_;
  TextBuffer text_;
  Bed bed_;
};

/// The text of a row of such a table.
void put_row(TextBuffer& text, CellTable::Bed bed, double x, double y, double z,
             std::span<const double> values);

}  // namespace utils
