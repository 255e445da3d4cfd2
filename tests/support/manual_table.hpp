// Tables of docs/manual.md, for tests that compare them with the tables of the program.
#pragma once

#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace support {

/// The rows of the table below a header: a link is its text, code is plain, and signs that are not
/// ASCII are those that programs write.
inline std::vector<std::string> manual_rows(const std::string& header) {
  std::ifstream manual(std::string(QUILLMERE_SOURCE_DIR) + "/docs/manual.md");
  std::string line;
  while (std::getline(manual, line) && line != header) {
  }
  std::getline(manual, line);  // the rule below the header
  std::vector<std::string> rows;
  while (std::getline(manual, line) && line.starts_with("|")) {
    line = std::regex_replace(line, std::regex(R"(\[([^\]]+)\]\([^)]*\))"), "$1");
    line = std::regex_replace(line, std::regex("`"), "");
    line = std::regex_replace(line, std::regex("\u00b2"), "2");
    rows.push_back(std::regex_replace(line, std::regex("\u2212"), "-"));
  }
  return rows;
}

/// A row of a table, whose empty fields are one space.
inline std::string table_row(const std::vector<std::string>& fields) {
  std::string text = "|";
  for (const std::string& field : fields) text += field.empty() ? " |" : " " + field + " |";
  return text;
}

}  // namespace support
