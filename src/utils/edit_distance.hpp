// How much a word resembles another one, for "did you mean".
#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <vector>

namespace utils {

/// Levenshtein's distance: the least number of characters to insert, delete or replace; capital and
/// small letters are the same.
inline std::size_t edit_distance(std::string_view a, std::string_view b) {
  const auto is_same = [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) ==
           std::tolower(static_cast<unsigned char>(y));
  };
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (is_same(a[i - 1], b[j - 1]) ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

/// The least distance at which another word is no misspelling of this one any more.
inline std::size_t least_strange_distance(std::string_view word) {
  return std::max<std::size_t>(2, word.size() / 3) + 1;
}

}  // namespace utils
