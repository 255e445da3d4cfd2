// Small questions about texts.
#pragma once

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace support {

inline bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

inline bool starts_with(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

inline int occurrences(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

/// The parts between separators: "a\tb\t" has the three parts "a", "b" and "".
inline std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

/// The complete lines of a text, without their line ends; an unfinished last line is left out.
inline std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> parts = split(text, '\n');
  parts.pop_back();
  return parts;
}

/// A double as a default output stream writes it.
inline std::string shown(double value) {
  std::ostringstream stream;
  stream << value;
  return stream.str();
}

}  // namespace support
