// Words that mean the same in capitals.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace mesh_import {

inline std::string small_letters(std::string_view text) {
  std::string word(text);
  for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return word;
}

}  // namespace mesh_import
