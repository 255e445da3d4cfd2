#include "export/TableReader.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>

#include "support/Error.hpp"
#include "utils/files.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

constexpr std::size_t buffer_size = 1 << 20;

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// Opens it as an input, which no output may replace.
std::ifstream open_table(const std::string& name) {
  try {
    return utils::open_input_file(name);
  } catch (const tools::Error&) {
    throw tools::Error("The file " + name + " couldn't be opened. Has the case been run?");
  }
}

/// Takes the first word from a line; empty if there is none.
std::string_view take_word(std::string_view& line) {
  const auto begin = std::find_if_not(line.begin(), line.end(), is_blank);
  const auto end = std::find_if(begin, line.end(), is_blank);
  const std::string_view word(begin, end);
  line = std::string_view(end, line.end());
  return word;
}

std::string column(std::size_t index) { return ", column " + std::to_string(index + 1); }

}  // namespace

TableReader::TableReader(const std::string& name, Missing missing)
    : name_(name), missing_(missing), file_(open_table(name)), buffer_(buffer_size, '\0') {
  std::error_code has_no_size;
  const std::uintmax_t size = std::filesystem::file_size(name, has_no_size);
  if (!has_no_size) size_at_start_ = size;
}

bool TableReader::fill() {
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  file_.read(buffer_.data() + end_, static_cast<std::streamsize>(buffer_.size() - end_));
  const auto n_read = static_cast<std::size_t>(file_.gcount());
  end_ += n_read;
  n_read_ += n_read;
  const bool is_full = end_ == buffer_.size();
  // A run that goes on lets the table grow; one that starts anew cuts it off.
  if (file_.bad() || (!is_full && n_read_ < size_at_start_)) {
    throw tools::Error("The file " + name_ + " couldn't be read to its end: " +
                       (file_.bad() ? "the system reports an error."
                                    : "it has become shorter since it was opened."));
  }
  return n_read > 0;
}

bool TableReader::next_line(std::string_view& line) {
  const void* newline = std::memchr(buffer_.data() + begin_, '\n', end_ - begin_);
  while (newline == nullptr) {
    const std::size_t searched = end_ - begin_;
    if (!fill()) break;
    newline = std::memchr(buffer_.data() + searched, '\n', end_ - searched);
  }
  if (newline == nullptr && begin_ == end_) return false;
  ++line_;
  if (newline == nullptr) {
    refuse(end_ - begin_ == buffer_.size()
               ? ": found no line end within a million bytes, expected a table of numbers."
               : ": found the end of the file, expected the end of the line; the file is cut off.");
  }
  const std::size_t size =
      static_cast<std::size_t>(static_cast<const char*>(newline) - buffer_.data()) - begin_;
  line = std::string_view(buffer_.data() + begin_, size);
  begin_ += size + 1;
  return true;
}

bool TableReader::next_row(std::span<double> values) {
  std::string_view line;
  if (!next_line(line)) return false;
  for (std::size_t k = 0; k < values.size(); ++k) {
    const std::string_view word = take_word(line);
    if (word.empty()) {
      refuse(column(k) + ": found the end of the line, expected " + std::to_string(values.size()) +
             " numbers.");
    }
    const bool is_known = utils::parse_number(word, values[k]) &&
                          (std::fabs(values[k]) <= std::numeric_limits<float>::max() ||
                           (missing_ == Missing::allowed && std::isnan(values[k])));
    if (!is_known) {
      refuse(column(k) + ": found " + utils::quoted_start(word) + ", expected a finite number.");
    }
  }
  if (const std::string_view word = take_word(line); !word.empty()) {
    refuse(column(values.size()) + ": found " + utils::quoted_start(word) + ", expected only " +
           std::to_string(values.size()) + " numbers.");
  }
  return true;
}

void TableReader::refuse(const std::string& what) const {
  throw tools::Error("Error in file " + name_ + ", line " + std::to_string(line_) + what);
}

}  // namespace exports
