// Tables with a row per cell, of values taken at one time: the rows that this process makes text of
// itself, in the thread that writes, and the text of the rows that other ranks have.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fields/Field.hpp"
#include "utils/CellTable.hpp"

namespace fields {

/// The columns of a table behind the centres of its cells.
struct RowsRequest {
  std::vector<Field> fields;  ///< a field may come more than once
  utils::CellTable::Bed bed = utils::CellTable::Bed::z_of_the_centre;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.fields, self.bed);
  }
};

/// Text of consecutive rows.
struct RowText {
  std::string text;
  bool is_last = false;  ///< no rows come behind them
};

class Rows {
 public:
  virtual ~Rows() = default;

  /// Takes the present values; in the thread of the steps, as next().
  virtual void gather() = 0;
  /// Adds the first rows of the table; in any thread.
  virtual void add_own_to(utils::CellTable& table) const = 0;
  /// Whether rows come behind these.
  virtual bool has_others() const { return false; }
  /// Those that come next, in pieces; nothing as long as they are not there yet.
  virtual std::optional<RowText> next() { return {}; }
};

}  // namespace fields
