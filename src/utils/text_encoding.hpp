// How the text of an input file is encoded, as its first bytes tell.
#pragma once

#include <string_view>

namespace utils {

/// The mark that editors put before UTF-8 text, and which is no part of it.
inline constexpr std::string_view utf8_mark = "\xEF\xBB\xBF";

/// Whether a text is UTF-16, with its byte-order mark or without: no text has null characters.
inline bool is_utf16(std::string_view start) {
  if (start.substr(0, 2) == "\xFF\xFE" || start.substr(0, 2) == "\xFE\xFF") return true;
  return start.size() >= 2 && (start[0] == '\0') != (start[1] == '\0');
}

/// What is said of such a file.
inline constexpr char found_utf16[] = "it is UTF-16 text, expected plain text (UTF-8 or ASCII)";

}  // namespace utils
