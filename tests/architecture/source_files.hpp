// The project's own files, as tests of its structure read them.
#pragma once

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

inline std::vector<std::filesystem::path> files_below(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".hpp" || extension == ".cpp") files.push_back(entry.path());
  }
  return files;
}

inline std::string text_of(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// What the first group of a pattern matches, wherever it does.
inline std::vector<std::string> matches(const std::string& text, const std::regex& pattern) {
  std::vector<std::string> found;
  for (std::sregex_iterator i(text.begin(), text.end(), pattern), end; i != end; ++i) {
    found.push_back((*i)[1].str());
  }
  return found;
}
