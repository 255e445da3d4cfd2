// Reads white-space separated values from a text file, and refuses what is malformed with a message
// that names file, line, record and field.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "utils/Reader.hpp"

namespace utils {

/// Values are accepted exactly as formatted stream extraction accepts them, as long as a whole
/// token is consumed. Anything else ends the run.
class TextScanner : public Reader {
 public:
  /// Opens the file. A UTF-8 byte-order mark at its start is no part of the text.
  explicit TextScanner(const std::string& name);
  /// Opens a file whose bytes up to an offset were read before; it is no pipe.
  TextScanner(const std::string& name, std::int64_t offset);
  virtual ~TextScanner() = default;

  /// Bytes of the file up to the end of the value read last.
  std::int64_t offset() const { return dropped_ + (next_ - text_.data()); }
  /// Bytes of the file.
  std::int64_t size() const { return size_; }

  /// Names the record that the next values belong to, as in "cell 3 (of 0 to 9)"; the values before
  /// the first record are the header.
  void begin_record(const char* kind, int index, int total) {
    record_kind_ = kind;
    record_index_ = index;
    record_total_ = total;
  }

  /// The number of that record.
  int record() const { return record_index_; }

  double read_number(const char* field) {
    double value;
    return read_usual_number(value) ? value : read_any_number(field);
  }
  int read_integer(const char* field) {
    int value;
    return read_usual_integer(value) ? value : read_any_integer(field);
  }
  /// An integer in [0, limit).
  int read_index(const char* field, int limit) {
    const int value = read_integer(field);
    if (value < 0 || value >= limit) refuse_index(field, limit);
    return value;
  }
  std::string read_word(const char* field);
  /// A number of records of at least `tokens_per_record` values each: between 0 and what the rest
  /// of the file can hold, so that it is safe to allocate.
  int read_count(const char* field, std::size_t tokens_per_record) {
    const int value = read_integer(field);
    require_count(value, field, tokens_per_record);
    return value;
  }
  /// The same of the value read last.
  void require_count(int value, const char* field, std::size_t tokens_per_record) {
    if (value < 0 || value * static_cast<std::ptrdiff_t>(tokens_per_record) > tokens_left()) {
      refuse_count(field, tokens_per_record);
    }
  }

  // A source that goes on behind what it refuses answers these otherwise.
  /// Whether there is more to read.
  static constexpr bool goes_on() { return true; }
  /// Whether nothing of the present record has been refused.
  static constexpr bool record_is_well() { return true; }
  /// Without the value read last nothing that follows can be understood.
  static constexpr void require_last() {}

  /// Ends the run: the value read last is not what is expected.
  [[noreturn]] void refuse(const char* field, const std::string& expected);
  /// Ends the run: the values of the record read last do not go together.
  [[noreturn]] void refuse_record(const std::string& why);

 protected:
  // For readers of files that hold more than values.
  /// White space of the C locale.
  static bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
  /// Takes the next token, empty at the end of the file; it holds until more is read.
  std::string_view next_token();
  /// Puts the next piece of the file behind what is in memory, of which it keeps what begins with
  /// the value read last; false at the end of the file.
  bool read_on();
  /// What is in memory and not yet read.
  std::string_view unread() const { return {next_, static_cast<std::size_t>(end_ - next_)}; }
  /// Passes over `count` characters, which are in memory.
  void skip(std::size_t count) { token_ = next_ += count; }
  /// Takes `count` characters, which are in memory, as the value read last.
  std::string_view take(std::size_t count) {
    token_ = next_;
    next_ += count;
    return token();
  }
  /// Bytes of the file before the value read last, and after it (less than none if it grew).
  std::ptrdiff_t position() const { return dropped_ + (token_ - text_.data()); }
  std::ptrdiff_t bytes_left() const { return size_ - dropped_ - (next_ - text_.data()); }
  /// Whether a value was there to be read.
  bool has_value() const { return next_ != token_; }
  /// File and line of the value read last.
  std::string place_of_line();
  /// The value read last, for a message.
  std::string found() const;
  /// What is said where the value read last is not what is expected.
  virtual std::string refusal(const char* field, const std::string& expected);

 private:
  static bool is_digit(char c) { return c >= '0' && c <= '9'; }

  // The piece of text in memory ends in a null character, which is neither space nor digit: it
  // stops every loop.
  void skip_spaces() {  // a token shows at the first comparison
    while (*next_ <= ' ' && is_space(*next_)) ++next_;
  }
  /// Takes the token from the present position up to `end`, if it is seen to end there.
  bool take_token(const char* end) {
    if (!is_space(*end)) return false;
    token_ = next_;
    next_ = end;
    return true;
  }
  /// The usual spellings, read where they stand; false leaves the token to the full rules.
  bool read_usual_number(double& value);
  bool read_usual_integer(int& value);
  bool take_digits(const char* p, int& value);
  double read_any_number(const char* field);
  int read_any_integer(const char* field);
  [[noreturn]] void refuse_index(const char* field, int limit);
  [[noreturn]] void refuse_count(const char* field, std::size_t tokens_per_record);
  void skip_byte_order_mark();
  std::string_view token() const;
  /// The most tokens that the rest of the file can hold.
  std::ptrdiff_t tokens_left() const { return bytes_left() / 2; }
  std::string place();

  std::vector<char> text_;      ///< the piece of the file in memory, and some padding
  const char* end_;             ///< its end
  const char* next_;            ///< its first character that is not yet read
  const char* token_;           ///< start of the token that ends at next_
  std::ptrdiff_t dropped_ = 0;  ///< bytes of the file before text_
  std::ptrdiff_t size_;         ///< bytes of the file
  const char* record_kind_ = nullptr;
  int record_index_ = 0;
  int record_total_ = 0;
};

/// Digits with or without a decimal point, few enough for the quotient of digits and power of ten
/// to have exact operands: it is then the nearest number.
inline bool TextScanner::read_usual_number(double& value) {
  static constexpr double powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr int most_digits = 15;
  skip_spaces();
  const char* p = next_;
  const bool is_negative = *p == '-';
  if (is_negative) ++p;
  std::int64_t digits = 0;
  int count = 0;
  const auto add_digits = [&] {
    for (; is_digit(*p) && count <= most_digits; ++count) digits = 10 * digits + (*p++ - '0');
  };
  add_digits();
  const int before_point = count;
  if (before_point == 0) return false;
  if (*p == '.') {
    ++p;
    add_digits();
    if (count == before_point) return false;
  }
  if (count > most_digits) return false;
  const int decimals = count - before_point;
  const double magnitude = static_cast<double>(digits) / powers_of_ten[decimals];
  value = is_negative ? -magnitude : magnitude;
  return take_token(p);
}

inline bool TextScanner::read_usual_integer(int& value) {
  skip_spaces();
  if (*next_ != '-') return take_digits(next_, value);
  const bool is_taken = take_digits(next_ + 1, value);
  value = -value;
  return is_taken;
}

/// The token whose digits begin at p, if they are one to nine, which cannot overflow.
inline bool TextScanner::take_digits(const char* p, int& value) {
  const char* const first_digit = p;
  int magnitude = 0;
  if constexpr (std::endian::native == std::endian::little) {  // four digits at once
    std::uint32_t four;
    std::memcpy(&four, p, sizeof four);
    four ^= 0x30303030;  // each byte becomes its digit, or more than 9
    const bool are_digits = (((four + 0x76767676) | four) & 0x80808080) == 0;
    if (are_digits) {
      four = (four * 10 + (four >> 8)) & 0x00FF00FF;  // neighbours join
      magnitude = static_cast<int>((four * 100 + (four >> 16)) & 0xFFFF);
      p += sizeof four;
    }
  }
  for (int i = 0; i < 5 && is_digit(*p); ++i) magnitude = 10 * magnitude + (*p++ - '0');
  value = magnitude;
  return p != first_digit && take_token(p);
}

}  // namespace utils
