// A look ahead at the files that a run will read and write, so that no result destroys an input or
// another result.
#pragma once

#include <string>
#include <vector>

namespace cases {

struct PlannedResult {
  std::string what;  ///< for messages: "the envelope"
  std::string name;
  bool is_written_whole;  ///< under a temporary name first
};

struct PlannedFiles {
  std::vector<std::string> inputs;
  std::vector<PlannedResult> results;
};

/// The files that a run of this data file will read and write, as far as the data file and the
/// files that it names tell; none is opened for writing. What cannot be read is left out: the run
/// itself will say so. `report`: the name of the report, empty if there is none; `folder`: that in
/// which the run takes place, where it is not the working directory.
PlannedFiles plan_files(const std::string& data_file, const std::string& report = "",
                        const std::string& folder = "");

/// What would be lost, a sentence for each result: two names lead to the same file.
std::vector<std::string> conflicts_of(const PlannedFiles& files);

}  // namespace cases
