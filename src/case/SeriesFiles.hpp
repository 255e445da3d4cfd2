// Numbers the time series that edges name by their files.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "case/Case.hpp"

namespace cases {

class SeriesFiles {
 public:
  explicit SeriesFiles(std::vector<Series>& series) : series_(series) {}

  /// The number of the series of a file, which `read(file)` gives when it is named for the first
  /// time; -1 if the name is empty.
  template <class Read>
  int number_of(const std::string& file, const Read& read) {
    if (file.empty()) return -1;
    const auto [known, is_new] = numbers_.try_emplace(file, static_cast<int>(series_.size()));
    if (is_new) series_.push_back(read(file));
    return known->second;
  }

 private:
  std::vector<Series>& series_;
  std::map<std::string, int> numbers_;
};

}  // namespace cases
