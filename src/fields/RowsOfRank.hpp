// The rows of tables that one of several ranks makes text of, and the way of that text to rank 0,
// which alone writes. The values come to the rank of the rows at once; the text is made in threads,
// and goes to rank 0 piece by piece, as there is room for it.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "fields/FlowOfRank.hpp"
#include "fields/Rows.hpp"
#include "utils/TextBuffer.hpp"
#include "utils/WriterThread.hpp"

namespace fields {

class RowsOfRank {
 public:
  /// The rows of a table, in memory.
  class Table;

  /// The group must outlive it.
  explicit RowsOfRank(ranks::Group& group);
  ~RowsOfRank();

  /// On all ranks: takes the present values of a table, which has a number. All text of its last
  /// ones has been passed on. Answers the rows of this rank, which keep their place.
  const Table& gather(int table, const RowsRequest& request, FlowOfRank& part);
  /// On all ranks: passes the next text of a rank on to rank 0, where it comes out, if it is made:
  /// so many bytes at most.
  std::optional<RowText> pass(int table, int from, std::size_t largest);

 private:
  ranks::Group& group_;
  std::vector<double> centres_;  ///< of the rows of this rank: x of all, then y, then z, m
  std::map<int, std::unique_ptr<Table>> tables_;
};

class RowsOfRank::Table {
 public:
  /// Puts all rows into a file; in any thread.
  void add_to(utils::CellTable& to) const;

 private:
  friend RowsOfRank;

  /// Calls add(x, y, z, values) for all rows.
  template <class Add>
  void for_each_row(const Add& add) const;
  bool make_text();

  RowsRequest request_;
  const std::vector<double>* centres_ = nullptr;
  std::vector<double> values_;  ///< column by column
  utils::TextBuffer text_;
  std::size_t passed_ = 0;         ///< bytes of the text
  utils::WriterThread formatter_;  ///< uses all that stands above
};

}  // namespace fields
