// A text file of a case, read past its errors.
#pragma once

#include <optional>
#include <string>

#include "case/Diagnostics.hpp"
#include "utils/TextScanner.hpp"

namespace cases {

/// Gives the readers of a case the values of a file, as utils::TextScanner gives them to a run;
/// what that refuses is told, and reading goes on behind it: for ten refusals or until the file
/// ends.
class CollectingSource {
 public:
  /// A file that can't be opened is told and has nothing to read.
  CollectingSource(const std::string& name, Diagnostics& diagnostics);

  /// Whether nothing has been refused.
  bool is_well() const { return refusals_ == 0; }
  /// Reads nothing more.
  void give_up() { scanner_.reset(); }

  // What readers of a case ask. A number that is refused is NaN, an integer -1, a word empty, a
  // count 0; without its counts a file can't be understood.
  void begin_record(const char* kind, int index, int total);
  double read_number(const char* field);
  int read_integer(const char* field);
  int read_index(const char* field, int limit);
  std::string read_word(const char* field);
  int read_count(const char* field, std::size_t tokens_per_record);
  void require_count(int value, const char* field, std::size_t tokens_per_record);
  bool goes_on() const { return scanner_.has_value(); }
  bool record_is_well() const { return refusals_ == refusals_before_record_; }
  void require_last();
  /// A value is refused once.
  void refuse(const char* field, const std::string& expected);

 private:
  template <class T, class Read>
  T take(T otherwise, Read read);
  void refused(const std::string& message);

  Diagnostics& diagnostics_;
  std::optional<utils::TextScanner> scanner_;
  std::string name_;
  int refusals_ = 0;
  int refusals_before_record_ = 0;
  bool last_is_well_ = true;
};

}  // namespace cases
