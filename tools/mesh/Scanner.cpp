#include "mesh/Scanner.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "mesh/numbers.hpp"
#include "support/Error.hpp"
#include "support/read_file.hpp"

namespace mesh_import {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }
bool is_space(char c) { return is_blank(c) || c == '\n'; }

std::string printable(std::string_view text) {
  constexpr std::size_t most = 40;
  std::string result = "\"";
  for (const char c : text.substr(0, most)) result += c >= ' ' && c != 127 ? c : '?';
  return result + (text.size() > most ? "...\"" : "\"");
}

}  // namespace

Scanner::Scanner(const std::string& path) : path_(path), text_(tools::read_file(path)) {}

bool Scanner::at_end() {
  while (position_ < text_.size() && is_space(text_[position_])) ++position_;
  return position_ == text_.size();
}

std::string_view Scanner::word(const char* what) {
  const bool is_missing = at_end();
  begin_value_ = position_;
  is_binary_value_ = false;
  if (is_missing) refuse(what, "a further value");
  while (position_ < text_.size() && !is_space(text_[position_])) ++position_;
  return std::string_view(text_).substr(begin_value_, position_ - begin_value_);
}

void Scanner::expect_word(std::string_view expected) {
  if (at_end() || word("section") != expected) {
    begin_value_ = std::min(begin_value_, text_.size());
    refuse("section", std::string(expected) + " here (is a count wrong?)");
  }
}

double Scanner::number(const char* what) {
  const auto value = parse_number(word(what));
  if (!value) refuse(what, "a finite number");
  return *value;
}

long long Scanner::integer(const char* what) {
  const std::string_view text = word(what);
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) refuse(what, "an integer");
  return value;
}

std::string Scanner::quoted_text(const char* what) {
  if (at_end() || text_[position_] != '"') return std::string(word(what));
  begin_value_ = position_;
  is_binary_value_ = false;
  const std::size_t end = text_.find_first_of("\"\n", position_ + 1);
  if (end == std::string::npos || text_[end] != '"') refuse(what, "a closing quote on this line");
  position_ = end + 1;
  return text_.substr(begin_value_ + 1, end - begin_value_ - 1);
}

bool Scanner::at_end_of_line() {
  while (position_ < text_.size() && is_blank(text_[position_])) ++position_;
  return position_ == text_.size() || text_[position_] == '\n';
}

void Scanner::skip_line() {
  const std::size_t end = text_.find('\n', position_);
  position_ = end == std::string::npos ? text_.size() : end + 1;
}

void Scanner::skip_past(const std::string& word) {
  const std::size_t found = text_.find("\n" + word, position_ > 0 ? position_ - 1 : 0);
  if (found == std::string::npos) refuse("section", word + " after it: the file is cut off");
  position_ = found + 1 + word.size();
}

std::string Scanner::place() const {
  if (is_binary_value_) return path_ + ", byte " + std::to_string(begin_value_);
  const auto begin = text_.begin();
  const auto value = std::next(begin, static_cast<std::ptrdiff_t>(begin_value_));
  return path_ + ", line " + std::to_string(1 + std::count(begin, value, '\n'));
}

void Scanner::refuse(std::string_view what, std::string_view expected) const {
  const std::string_view rest = std::string_view(text_).substr(begin_value_);
  const auto length = std::min(position_, text_.size()) - begin_value_;
  std::string found = "the end of the file";
  if (is_binary_value_) {
    found = rest.empty() ? found : "other bytes";
  } else if (!rest.empty()) {
    found = printable(rest.substr(0, length));
  }
  throw tools::Error(place() + ": " + std::string(what) + ": found " + found + ", expected " +
                     std::string(expected) + ".");
}

}  // namespace mesh_import
