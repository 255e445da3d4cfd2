// Reads files of other programs, which hold more than values between white space: lines, texts in
// quotes, binary values.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include "utils/TextScanner.hpp"

namespace mesh_import {

/// Everything that cannot be read throws tools::Error with the file, the place in it, what was
/// found and what is expected. `what` names a value in messages.
class ForeignScanner : public utils::TextScanner {
 public:
  using TextScanner::TextScanner;

  const std::string& path() const { return name_; }

  bool at_end();
  /// Holds until more is read.
  std::string_view word(const char* what);
  void expect_word(const std::string& expected);
  double number(const char* what) { return read_number(what); }
  long long integer(const char* what);
  /// A text in double quotes, or else a word.
  std::string quoted_text(const char* what);
  /// Whether only blanks stand between here and the end of the line.
  bool at_end_of_line();
  /// Passes over the rest of the line, its end included.
  void skip_line();
  /// Passes over everything up to a word at the start of a line, the word included.
  void skip_past(const std::string& word);

  /// A binary value, in the byte order of this machine.
  template <class T>
  T raw(const char* what) {
    T value;
    const std::string_view bytes = take_bytes(sizeof value, what);
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }

  /// Bytes of the rest of the file.
  std::size_t size_of_rest() const {
    return bytes_left() > 0 ? static_cast<std::size_t>(bytes_left()) : 0;
  }
  /// Where the value read last stands: file and line, or file and byte.
  std::string place();

 private:
  std::string refusal(const char* what, const std::string& expected) override;
  std::string_view take_bytes(std::size_t count, const char* what);
  bool is_binary_value() const { return position() == binary_value_; }

  std::ptrdiff_t binary_value_ = -1;  ///< position of the last one
};

}  // namespace mesh_import
