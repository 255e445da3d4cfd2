// Reads the values of a mesh or terrain file, text or binary, and refuses what is malformed.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

namespace mesh_import {

/// The file is held in memory. Everything that cannot be read throws tools::Error with the file,
/// the place in it, what was found and what is expected.
class Scanner {
 public:
  explicit Scanner(const std::string& path);

  const std::string& path() const { return path_; }

  // Text. White space separates words; `what` names the value in messages.
  bool at_end();
  std::string_view word(const char* what);
  void expect_word(std::string_view expected);
  double number(const char* what);
  long long integer(const char* what);
  /// A text in double quotes, or else a word.
  std::string quoted_text(const char* what);
  /// Whether only blanks stand between here and the end of the line.
  bool at_end_of_line();
  /// Passes over the rest of the line, its end included.
  void skip_line();
  /// Passes over everything up to a word at the start of a line, the word included.
  void skip_past(const std::string& word);

  // Binary, in the byte order of this machine.
  template <class T>
  T raw(const char* what) {
    begin_value_ = position_;
    T value;
    if (bytes_left() < sizeof value) refuse(what, "more bytes: the file is cut off");
    std::memcpy(&value, text_.data() + position_, sizeof value);
    position_ += sizeof value;
    is_binary_value_ = true;
    return value;
  }

  std::size_t bytes_left() const { return text_.size() - position_; }

  /// Throws: the value read last is not what is expected.
  [[noreturn]] void refuse(std::string_view what, std::string_view expected) const;
  /// Where the value read last stands.
  std::string place() const;

 private:
  std::string path_;
  std::string text_;
  std::size_t position_ = 0;
  std::size_t begin_value_ = 0;
  bool is_binary_value_ = false;
};

}  // namespace mesh_import
