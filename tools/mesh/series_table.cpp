#include "mesh/series_table.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "case/read_series.hpp"
#include "mesh/units.hpp"
#include "support/Error.hpp"
#include "utils/files.hpp"
#include "utils/number_text.hpp"
#include "utils/text_encoding.hpp"

namespace mesh_import {

namespace {

/// The lines of a text, with their numbers, without empty ones and comments (#).
class Lines {
 public:
  explicit Lines(std::string_view rest) : rest_(rest) {
    if (rest_.starts_with(utils::utf8_mark)) rest_.remove_prefix(utils::utf8_mark.size());
  }

  /// The next line; none at the end.
  std::optional<std::string_view> next() {
    while (!rest_.empty()) {
      const std::string_view line = rest_.substr(0, rest_.find_first_of("\r\n"));
      const std::size_t end = line.size();
      const bool is_crlf = rest_.substr(end, 2) == "\r\n";
      rest_.remove_prefix(std::min(rest_.size(), end + (is_crlf ? 2U : 1U)));
      ++number_;
      const std::size_t first = line.find_first_not_of(" \t");
      if (first != std::string_view::npos && line[first] != '#') return line;
    }
    return std::nullopt;
  }
  int number() const { return number_; }

 private:
  std::string_view rest_;
  int number_ = 0;
};

std::string_view bare_word(std::string_view text) {
  constexpr char blanks[] = " \t\"";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

/// What stands between the first separator that the line has: semicolons, tabs, commas, or blanks,
/// behind which a unit in brackets belongs to the title before it.
std::vector<std::string_view> columns_of(std::string_view line) {
  char separator = ' ';
  for (const char candidate : {',', '\t', ';'}) {
    if (line.find(candidate) != std::string_view::npos) separator = candidate;
  }
  std::vector<std::string_view> columns;
  for (std::size_t begin = 0; begin <= line.size();) {
    const std::size_t end = std::min(line.find(separator, begin), line.size());
    const std::string_view column = bare_word(line.substr(begin, end - begin));
    const bool is_unit = separator == ' ' && column.starts_with('[') && !columns.empty();
    if (is_unit) {
      const char* const title = columns.back().data();
      columns.back() = {title, static_cast<std::size_t>(column.data() + column.size() - title)};
    } else if (separator != ' ' || !column.empty()) {
      columns.push_back(column);
    }
    begin = end + 1;
  }
  return columns;
}

/// The unit in the brackets of a title, or behind its last blank or underscore.
std::optional<Unit> unit_of_title(std::string_view title) {
  const std::size_t open = title.find_first_of("[(");
  if (open != std::string_view::npos) {
    const std::size_t close = title.find_first_of("])", open);
    if (close == std::string_view::npos) return std::nullopt;
    return parse_unit(bare_word(title.substr(open + 1, close - open - 1)));
  }
  const std::size_t mark = title.find_last_of(" _");
  return parse_unit(mark == std::string_view::npos ? title : title.substr(mark + 1));
}

class Table {
 public:
  Table(const std::string& file, std::string text)
      : file_(file), text_(std::move(text)), lines_(text_) {}

  /// Whether the first line holds no number: a series of a case begins with a count.
  static bool has_titles(const std::string& text) {
    const auto first = Lines(text).next();
    return first && !utils::is_utf16(text) && !columns_of(*first).empty() &&
           !utils::parse_finite_number(columns_of(*first).front());
  }

  ImposedSeries read(const cases::BoundaryKind& kind) {
    ImposedSeries imposed;
    imposed.series.file = file_;
    const auto [time, value] = read_units(kind);
    imposed.is_total = value.quantity == Quantity::discharge;
    while (const auto line = lines_.next()) {
      const auto columns = columns_of(*line);
      if (columns.size() != 2) refuse(*line, "a time and a value");
      const auto number = [&](std::string_view word) {
        const auto found = utils::parse_finite_number(word);
        if (!found) refuse(word, "a number");
        return *found;
      };
      std::vector<double>& times = imposed.series.times;
      const double t = number(columns[0]) * time.in_si;
      if (!times.empty() && !(t > times.back())) {
        refuse(columns[0], "a time later than that of the line before");
      }
      times.push_back(t);
      imposed.series.values.push_back(number(columns[1]) * value.in_si);
    }
    if (imposed.series.times.size() < 2) {
      throw tools::Error(file_ + ": found " + std::to_string(imposed.series.times.size()) +
                         " lines of values, expected at least 2.");
    }
    return imposed;
  }

 private:
  std::array<Unit, 2> read_units(const cases::BoundaryKind& kind) {
    const std::string_view titles = lines_.next().value_or("");
    const auto columns = columns_of(titles);
    if (columns.size() != 2) refuse(titles, "two titles, as in \"time [h], discharge [m3/s]\"");
    const auto time = unit_of_title(columns[0]);
    if (!time || time->quantity != Quantity::time) {
      refuse(columns[0], "a title that ends in s, min, h or d, as in \"time [h]\"");
    }
    const auto value = unit_of_title(columns[1]);
    if (kind.imposes_level() && !(value && value->quantity == Quantity::length)) {
      refuse(columns[1], "a title that ends in m, as in \"level [m]\"");
    }
    if (kind.imposes_discharge() && !(value && (value->quantity == Quantity::discharge ||
                                                value->quantity == Quantity::unit_discharge))) {
      refuse(columns[1], "a title that ends in m3/s or m2/s, as in \"discharge [m3/s]\"");
    }
    return {*time, *value};
  }

  [[noreturn]] void refuse(std::string_view found, const std::string& expected) const {
    throw tools::Error(file_ + ", line " + std::to_string(lines_.number()) + ": found " +
                       utils::quoted_start(found) + ", expected " + expected + ".");
  }

  std::string file_, text_;
  Lines lines_;
};

}  // namespace

ImposedSeries read_boundary_series(const std::string& file, const cases::BoundaryKind& kind) {
  const std::string name = utils::readable_again(file);
  std::ostringstream text;
  text << utils::open_input_file(name).rdbuf();
  if (!Table::has_titles(text.str())) return {cases::read_series(name), false};
  return Table(file, text.str()).read(kind);
}

}  // namespace mesh_import
