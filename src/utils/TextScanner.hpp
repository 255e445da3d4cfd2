// Reads white-space separated values from a text file held in memory, and refuses what is
// malformed with a message that names file, line, record and field.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "utils/Reader.hpp"

namespace utils {

/// Values are accepted exactly as formatted stream extraction accepts them, as long as a whole
/// token is consumed. Anything else ends the run.
class TextScanner : public Reader {
 public:
  /// Opens the file and reads it whole.
  explicit TextScanner(const std::string& name);

  /// Names the record that the next values belong to, as in "cell 3 (of 0 to 9)"; the values before
  /// the first record are the header.
  void begin_record(const char* kind, int index, int total);

  double read_number(const char* field);
  int read_integer(const char* field);
  /// An integer in [0, limit).
  int read_index(const char* field, int limit);
  std::string read_word(const char* field);
  /// A number of records of at least `tokens_per_record` values each: between 0 and what the rest
  /// of the file can hold, so that it is safe to allocate.
  int read_count(const char* field, std::size_t tokens_per_record);

  /// Ends the run: the value read last is not what is expected.
  [[noreturn]] void refuse(const char* field, const std::string& expected) const;

 private:
  std::string_view next_token();
  std::string place() const;

  std::string text_;
  std::size_t position_ = 0;
  std::string_view token_;
  const char* record_kind_ = nullptr;
  int record_index_ = 0;
  int record_total_ = 0;
};

}  // namespace utils
