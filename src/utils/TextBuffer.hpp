// Numbers and text formatted into memory with the bytes that a default output stream would write.
#pragma once

#include <charconv>
#include <string>
#include <string_view>

namespace utils {

/// Notation holds until it is changed, as on a stream: six significant digits at first.
class TextBuffer {
 public:
  /// Six significant digits, the default notation of streams.
  void use_default_notation() { fixed_ = false; }
  /// Three decimals.
  void use_fixed_notation() { fixed_ = true; }

  TextBuffer& operator<<(double value);
  TextBuffer& operator<<(char c) {
    text_ += c;
    return *this;
  }
  TextBuffer& operator<<(std::string_view text) {
    text_ += text;
    return *this;
  }

  const std::string& text() const { return text_; }
  void clear() { text_.clear(); }

 private:
  std::string text_;
  bool fixed_ = false;
};

inline TextBuffer& TextBuffer::operator<<(double value) {
  char digits[330];  // the longest double with three decimals takes 314 characters
  const auto end =
      fixed_ ? std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 3)
             : std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6);
  text_.append(digits, end.ptr);
  return *this;
}

}  // namespace utils
