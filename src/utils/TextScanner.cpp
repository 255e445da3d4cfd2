#include "utils/TextScanner.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "utils/stop.hpp"

namespace utils {

namespace {

/// A leading "+" is a sign to formatted extraction, but not to from_chars.
std::string_view without_plus(std::string_view token) {
  const bool signed_twice = token.size() > 1 && token[1] == '-';
  return !token.empty() && token.front() == '+' && !signed_twice ? token.substr(1) : token;
}

/// Whether the token is a finite number; `value` receives it.
bool parse_number(std::string_view token, double& value) {
  const std::string_view digits = without_plus(token);
  const char* last = digits.data() + digits.size();
  const auto [end, error] = std::from_chars(digits.data(), last, value);
  if (end != last) return false;
  if (error == std::errc::result_out_of_range) {
    value = std::strtod(std::string(digits).c_str(), nullptr);  // too small is 0, too large is not
  } else if (error != std::errc()) {
    return false;
  }
  return std::isfinite(value);
}

/// Printable start of a token, for a message.
std::string quoted(std::string_view token) {
  constexpr std::size_t shown = 40;
  std::string text = "\"";
  for (const char c : token.substr(0, shown)) text += c >= ' ' && c != 127 ? c : '?';
  return text + (token.size() > shown ? "...\"" : "\"");
}

}  // namespace

TextScanner::TextScanner(const std::string& name) : Reader(name) {
  // What is not a regular file (a pipe, say) has no size beforehand and comes piece by piece.
  constexpr std::size_t piece = 1 << 16;
  std::error_code has_no_size;
  const std::uintmax_t file_size = std::filesystem::file_size(name, has_no_size);
  if (!has_no_size) text_.reserve(file_size + piece);
  std::size_t size = 0;
  do {
    text_.resize(size + piece);
    stream_.read(text_.data() + size, piece);
    size += static_cast<std::size_t>(stream_.gcount());
  } while (stream_);
  if (stream_.bad()) fatal("Fatal error. Impossible to read file " + name + " to its end.\n");
  text_.resize(size);
  next_ = text_.data();
  close();
  skip_byte_order_mark();
}

void TextScanner::skip_byte_order_mark() {
  const std::string_view text = text_;
  if (text.substr(0, 2) == "\xFF\xFE" || text.substr(0, 2) == "\xFE\xFF") {
    fatal("Error in file " + name_ +
          ": it is UTF-16 text, expected plain text (UTF-8 or ASCII).\n");
  }
  if (text.substr(0, 3) == "\xEF\xBB\xBF") next_ += 3;  // UTF-8, which editors like to mark
}

void TextScanner::begin_record(const char* kind, int index, int total) {
  record_kind_ = kind;
  record_index_ = index;
  record_total_ = total;
}

std::string_view TextScanner::next_token() {
  skip_spaces();
  const char* const begin = next_;
  while (next_ != end_of_text() && !is_space(*next_)) ++next_;
  token_ = std::string_view(begin, static_cast<std::size_t>(next_ - begin));
  return token_;
}

double TextScanner::read_any_number(const char* field) {
  double value = 0.0;
  if (!parse_number(next_token(), value)) refuse(field, "a finite number");
  return value;
}

int TextScanner::read_any_integer(const char* field) {
  const std::string_view digits = without_plus(next_token());
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) {
    refuse(field, "an integer");
  }
  return value;
}

void TextScanner::refuse_index(const char* field, int limit) const {
  refuse(field, limit > 0 ? "an index from 0 to " + std::to_string(limit - 1)
                          : "no index: there is nothing to point to");
}

std::string TextScanner::read_word(const char* field) {
  const std::string_view token = next_token();
  if (token.empty()) refuse(field, "a word");
  return std::string(token);
}

int TextScanner::read_count(const char* field, std::size_t tokens_per_record) {
  const int value = read_integer(field);
  const std::size_t tokens_left = static_cast<std::size_t>(end_of_text() - next_) / 2;
  const std::size_t records_left = tokens_left / std::max<std::size_t>(tokens_per_record, 1);
  if (value < 0 || static_cast<std::size_t>(value) > records_left) {
    refuse(field, "a count from 0 to " + std::to_string(records_left) +
                      ", the most that the rest of the file can hold");
  }
  return value;
}

std::string TextScanner::place() const {
  const auto begin = text_.begin();
  const auto offset =
      token_.empty() ? text_.size() : static_cast<std::size_t>(token_.data() - text_.data());
  const auto line = 1 + std::count(begin, begin + static_cast<std::ptrdiff_t>(offset), '\n');
  std::string text = "Error in file " + name_ + ", line " + std::to_string(line) + ", ";
  if (record_kind_ == nullptr) return text + "header";
  text += record_kind_ + (" " + std::to_string(record_index_));
  return text + " (of 0 to " + std::to_string(record_total_ - 1) + ")";
}

void TextScanner::refuse(const char* field, const std::string& expected) const {
  const std::string found = token_.empty() ? "the end of the file" : quoted(token_);
  fatal(place() + ", " + field + ": found " + found + ", expected " + expected + ".\n");
}

}  // namespace utils
