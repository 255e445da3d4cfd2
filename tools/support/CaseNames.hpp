// The names of what a case records, and of its boundaries: a file beside the data file, which the
// simulator does not read.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace tools {

inline constexpr char names_file_name[] = "names.json";

struct CaseNames {
  std::vector<std::string> gauges, sections;           // in their order; empty without a name
  std::map<std::string, std::vector<int>> boundaries;  // their edges
};

/// The text of the file, a line for every member.
std::string text_of(const CaseNames& names);

/// The names of the case in a folder, none where it has no such file. Throws Error for a file that
/// is malformed.
CaseNames read_case_names(const std::string& folder);

/// A name for each of so many things; all empty where the names are not as many, as those of
/// another list are.
std::vector<std::string> names_of_each(std::vector<std::string> names, std::size_t count);

}  // namespace tools
