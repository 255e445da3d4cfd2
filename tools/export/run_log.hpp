// What the log of the last run tells about the age of results.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "export/CaseFiles.hpp"

namespace exports {

/// The last run may have been stopped before it replaced all results of an earlier one.
class RunLog {
 public:
  /// Reads log.txt in the folder of the case. Without one, or where it is of a run with another
  /// name, nothing is known, and no result is an earlier one.
  explicit RunLog(const CaseFiles& files);

  const std::string& name() const { return name_; }
  /// What the log says; empty without one of this case.
  const std::string& text() const { return text_; }
  /// Whether a result is of an earlier run: it was written before the run of the log began.
  bool is_earlier(const std::string& result) const;
  /// The same of a snapshot for a time (s), which may lie beyond what the run reached.
  bool is_earlier(const std::string& snapshot, double time) const;
  /// Whether the report of a run is of an earlier one: every run writes it when its log has ended.
  bool is_earlier_report(const std::string& report) const;
  /// Refuses a table of gauges or sections of an earlier run.
  void expect_of_run(const std::string& table) const;

 private:
  std::string name_, text_;
  std::optional<std::filesystem::file_time_type> last_line_;  ///< when it was written
  std::optional<std::filesystem::file_time_type> begin_;      ///< nothing of the run is older
  std::optional<double> reached_;                             ///< where the run ended early, s
};

}  // namespace exports
