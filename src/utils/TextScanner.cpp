#include "utils/TextScanner.hpp"

#include <algorithm>
#include <filesystem>

#include "utils/number_text.hpp"
#include "utils/stop.hpp"
#include "utils/text_encoding.hpp"

namespace utils {

namespace {

// Bytes that a cache holds: the page faults of memory for a whole file take as long as its reading.
constexpr std::ptrdiff_t piece = 1 << 18;
constexpr std::ptrdiff_t padding = 4;  // for looks at four characters at once

}  // namespace

TextScanner::TextScanner(const std::string& name) : Reader(name), text_(piece + padding) {
  token_ = next_ = end_ = text_.data();
  std::error_code has_no_size;
  const std::uintmax_t file_size = std::filesystem::file_size(name, has_no_size);
  if (has_no_size || file_size == 0) {  // a pipe, say: it is read whole, to know its size
    while (read_on()) continue;
    size_ = end_ - text_.data();
  } else {
    read_on();
    size_ = static_cast<std::ptrdiff_t>(file_size);
  }
  skip_byte_order_mark();
  token_ = next_;
}

TextScanner::TextScanner(const std::string& name, std::int64_t offset)
    : Reader(name), text_(piece + padding) {
  token_ = next_ = end_ = text_.data();
  size_ = static_cast<std::ptrdiff_t>(std::filesystem::file_size(name));
  dropped_ = offset;
  stream_.seekg(offset);
  read_on();
}

bool TextScanner::read_on() {
  if (!stream_) return false;
  const std::ptrdiff_t capacity = static_cast<std::ptrdiff_t>(text_.size()) - padding;
  const std::ptrdiff_t kept = end_ - token_, taken = next_ - token_;
  dropped_ += token_ - text_.data();
  std::copy(token_, end_, text_.data());
  // Doubling keeps the time for a token of any length proportional to its length.
  if (2 * kept > capacity) text_.resize(2 * text_.size());
  token_ = text_.data();
  next_ = token_ + taken;
  stream_.read(text_.data() + kept, static_cast<std::ptrdiff_t>(text_.size()) - padding - kept);
  if (stream_.bad()) fatal("Fatal error. Impossible to read file " + name_ + " to its end.\n");
  end_ = text_.data() + kept + stream_.gcount();
  text_[static_cast<std::size_t>(end_ - token_)] = '\0';
  return stream_.gcount() > 0;
}

void TextScanner::skip_byte_order_mark() {
  const std::string_view text(next_, static_cast<std::size_t>(end_ - next_));
  if (is_utf16(text)) fatal("Error in file " + name_ + ": " + found_utf16 + ".\n");
  if (text.starts_with(utf8_mark)) next_ += utf8_mark.size();
}

std::string_view TextScanner::next_token() {
  std::ptrdiff_t length;
  do {
    skip_spaces();
    token_ = next_;
    length = std::find_if(next_, end_, is_space) - next_;
  } while (next_ + length == end_ && read_on());
  next_ += length;
  return token();
}

std::string_view TextScanner::token() const {
  return {token_, static_cast<std::size_t>(next_ - token_)};
}

double TextScanner::read_any_number(const char* field) {
  const std::optional<double> value = parse_finite_number(next_token());
  if (!value) refuse(field, "a finite number");
  return *value;
}

int TextScanner::read_any_integer(const char* field) {
  const std::optional<int> value = parse_integer<int>(next_token());
  if (!value) refuse(field, "an integer");
  return *value;
}

void TextScanner::refuse_index(const char* field, int limit) {
  refuse(field, limit > 0 ? "an index from 0 to " + std::to_string(limit - 1)
                          : "no index: there is nothing to point to");
}

void TextScanner::refuse_count(const char* field, std::size_t tokens_per_record) {
  const auto per_record = static_cast<std::ptrdiff_t>(tokens_per_record);
  const std::ptrdiff_t most = std::max<std::ptrdiff_t>(tokens_left() / per_record, 0);
  refuse(field, "a count from 0 to " + std::to_string(most) +
                    ", the most that the rest of the file can hold");
}

std::string TextScanner::read_word(const char* field) {
  const std::string_view token = next_token();
  if (token.empty()) refuse(field, "a word");
  return std::string(token);
}

std::string TextScanner::place_of_line() {
  auto line = 1 + std::count<const char*>(text_.data(), token_, '\n');
  stream_.clear();
  stream_.seekg(0);
  for (std::ptrdiff_t i = 0; i < dropped_; ++i) line += stream_.get() == '\n';
  stream_.seekg(dropped_ + (end_ - text_.data()));  // whoever catches the refusal may read on
  return name_ + ", line " + std::to_string(line);
}

std::string TextScanner::place() {
  std::string text = "Error in file " + place_of_line() + ", ";
  if (record_kind_ == nullptr) return text + "header";
  text += record_kind_ + (" " + std::to_string(record_index_));
  return text + " (of 0 to " + std::to_string(record_total_ - 1) + ")";
}

void TextScanner::refuse_record(const std::string& why) { fatal(place() + ": " + why + ".\n"); }

std::string TextScanner::found() const {
  return has_value() ? quoted_start(token()) : "the end of the file";
}

std::string TextScanner::refusal(const char* field, const std::string& expected) {
  return place() + ", " + field + ": found " + found() + ", expected " + expected + ".\n";
}

void TextScanner::refuse(const char* field, const std::string& expected) {
  fatal(refusal(field, expected));
}

}  // namespace utils
