// Damage to the text of a file, as tests do it to show that a reader survives it.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace support {

inline std::size_t below(std::mt19937& random, std::size_t n) { return n == 0 ? 0 : random() % n; }

/// Positions of the digits of a text.
inline std::vector<std::size_t> digits_of(const std::string& text) {
  std::vector<std::size_t> digits;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= '0' && text[i] <= '9') digits.push_back(i);
  }
  return digits;
}

/// A file cut off, with other bytes, other counts and numbers, missing or repeated parts, or junk.
inline std::string damaged(std::string text, std::mt19937& random) {
  const std::size_t at = below(random, text.size());
  switch (random() % 6) {
    case 0:
      return text.substr(0, at);
    case 1:
      for (int k = 0; k < 8; ++k) text[below(random, text.size())] = static_cast<char>(random());
      return text;
    case 2: {
      const auto digits = digits_of(text);
      for (int k = 0; k < 3; ++k) {
        const char* const numbers[] = {"9", "-1", "0", "999999999999", "nan", "1e308", "7"};
        text.replace(digits[below(random, digits.size())], 1, numbers[random() % 7]);
      }
      return text;
    }
    case 3:
      return text.erase(at, below(random, 60));
    case 4:
      return text.insert(at, text.substr(below(random, text.size()), below(random, 60)));
    default:
      for (int k = 0; k < 30; ++k)
        text.insert(text.begin() + static_cast<std::ptrdiff_t>(at), static_cast<char>(random()));
      return text;
  }
}

}  // namespace support
