// Tables with a row per cell, of values taken at one time: the rows that this process has, which
// the thread that writes makes text or bytes of, and the text or bytes of the rows that other ranks
// have.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fields/Columns.hpp"
#include "fields/Field.hpp"
#include "fields/SavedFlow.hpp"
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

/// The fields of rows of numbers.
struct ValuesRequest {
  std::vector<Field> fields;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.fields);
  }
};

/// Text of consecutive rows, or bytes that hold them.
struct RowText {
  std::string text;
  bool is_last = false;  ///< no rows come behind them
};

/// Those of other ranks; in the thread of the steps.
class RowsOfOthers {
 public:
  virtual ~RowsOfOthers() = default;

  /// Whether rows come behind those of this process.
  virtual bool has_others() const { return false; }
  /// Those that come next, in pieces; nothing as long as they are not there yet. Throws
  /// std::runtime_error where they cannot be had.
  virtual std::optional<RowText> next() { return {}; }
};

/// How far a file is that several ranks write.
struct SharedFile {
  enum class State {
    waits,       ///< for another one of them
    grows,       ///< they have got something to do, this one mostly too
    is_refused,  ///< one of them cannot write into it, and nothing is written
    is_over      ///< all is written, or one of them failed
  };
  State state;
  int rank = 0;             ///< that refused it, or failed
  int error = 0;            ///< why, as a number of the system
  std::uint64_t bytes = 0;  ///< of a file that is written
};

class Rows : public RowsOfOthers {
 public:
  /// Takes the present values; in the thread of the steps.
  virtual void gather() = 0;
  /// Adds the first rows of the table; in any thread.
  virtual void add_own_to(utils::CellTable& table) const = 0;

  /// Whether write_shared() may be called; in any thread.
  virtual bool have_writers() const { return false; }
  /// Several ranks write a header and all rows into a file: lets them do what comes next. In the
  /// thread of the steps; where it is refused, rows come as if it had not been called.
  virtual SharedFile write_shared(const utils::SharedPart&, const std::string& /*header*/) {
    return {SharedFile::State::is_refused};
  }
  /// Waits until this process has done what it got to do; in any other thread.
  virtual void wait_for_own() const {}
};

/// Of values of fields, and of the bed at the start: numbers as they lie in memory, those of a row
/// in the order in which the fields were asked for, the bed last.
class ValueRows : public RowsOfOthers {
 public:
  /// Takes the present values of fields, each once; in the thread of the steps.
  virtual void gather(const std::vector<Field>& fields) = 0;
  // The first rows; in any thread.
  virtual const Columns& columns() const = 0;
  virtual const std::vector<double>& bed() const = 0;  ///< m
};

class Looks;

/// What is kept with the state, for the looks and the report of the run that goes on.
struct Books {
  const Looks* looks = nullptr;  ///< null: nothing of them
  bool has_notes = false;
};

/// Of what is kept of a flow: numbers as they lie in memory.
class SavedRows : public RowsOfOthers {
 public:
  /// Takes the present state; in the thread of the steps.
  virtual void gather(const Books& books) = 0;
  /// What was gathered besides rows.
  const SavedFlow& flow() const { return flow_; }
  /// Puts the first rows; in any thread.
  virtual void put_own_to(utils::ByteSink& sink) const = 0;

 protected:
  SavedFlow flow_;
};

}  // namespace fields
