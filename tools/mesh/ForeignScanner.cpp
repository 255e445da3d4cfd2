#include "mesh/ForeignScanner.hpp"

#include <algorithm>

#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

std::size_t length_of(std::string_view text, bool (*is_of_kind)(char)) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_of_kind) -
                                  text.begin());
}

}  // namespace

bool ForeignScanner::at_end() {
  do {
    skip(length_of(unread(), is_space));
  } while (unread().empty() && read_on());
  return unread().empty();
}

std::string_view ForeignScanner::word(const char* what) {
  const std::string_view word = next_token();
  if (word.empty()) refuse(what, "a further value");
  return word;
}

void ForeignScanner::expect_word(const std::string& expected) {
  if (next_token() != expected) refuse("section", expected + " here (is a count wrong?)");
}

long long ForeignScanner::integer(const char* what) {
  const auto value = utils::parse_integer<long long>(word(what));
  if (!value) refuse(what, "an integer");
  return *value;
}

std::string ForeignScanner::quoted_text(const char* what) {
  if (at_end() || unread().front() != '"') return std::string(word(what));
  std::size_t end;
  do {
    end = unread().find_first_of("\"\n", 1);
  } while (end == std::string_view::npos && read_on());
  const bool is_closed = end != std::string_view::npos && unread()[end] == '"';
  if (!is_closed) {
    take(1);
    refuse(what, "a closing quote on this line");
  }
  return std::string(take(end + 1).substr(1, end - 1));
}

bool ForeignScanner::at_end_of_line() {
  std::size_t blanks;
  do {
    blanks = length_of(unread(), [](char c) { return is_space(c) && c != '\n'; });
  } while (blanks == unread().size() && read_on());
  return blanks == unread().size() || unread()[blanks] == '\n';
}

void ForeignScanner::skip_line() {
  do {
    skip(length_of(unread(), [](char c) { return c != '\n'; }));
  } while (unread().empty() && read_on());
  if (!unread().empty()) skip(1);
}

void ForeignScanner::skip_past(const std::string& word) {
  const std::string mark = "\n" + word;
  std::size_t found;
  while ((found = unread().find(mark)) == std::string_view::npos) {
    const std::size_t begun = std::min(unread().size(), mark.size() - 1);
    skip(unread().size() - begun);
    if (read_on()) continue;
    skip(begun);
    refuse("section", word + " before it: the file is cut off");
  }
  skip(found + mark.size());
}

std::string_view ForeignScanner::take_bytes(std::size_t count, const char* what) {
  while (unread().size() < count && read_on()) continue;
  const bool is_there = unread().size() >= count;
  const std::string_view bytes = take(is_there ? count : unread().size());
  binary_value_ = position();
  if (!is_there) refuse(what, "more bytes: the file is cut off");
  return bytes;
}

std::string ForeignScanner::place() {
  return is_binary_value() ? path() + ", byte " + std::to_string(position()) : place_of_line();
}

std::string ForeignScanner::refusal(const char* what, const std::string& expected) {
  const std::string text = is_binary_value() && has_value() ? "other bytes" : found();
  return place() + ": " + what + ": found " + text + ", expected " + expected + ".";
}

}  // namespace mesh_import
