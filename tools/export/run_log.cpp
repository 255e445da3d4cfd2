#include "export/run_log.hpp"

#include <chrono>
#include <cmath>
#include <string_view>

#include "support/Error.hpp"
#include "support/read_file.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

namespace fs = std::filesystem;

/// The number behind a text that the log holds; none where it does not.
std::optional<double> number_behind(std::string_view log, std::string_view text) {
  const auto found = log.rfind(text);
  if (found == std::string_view::npos) return std::nullopt;
  const std::string_view rest = log.substr(found + text.size());
  return utils::parse_finite_number(rest.substr(0, rest.find_first_of(" \n")));
}

bool is_of_run(std::string_view log, const std::string& name) {
  return log.find("Name of the simulation:\n" + name + "\n") != std::string_view::npos;
}

/// Whether a file was written more than a span of time before a moment, where that is known.
bool is_before(const std::string& file, const std::optional<fs::file_time_type>& moment,
               fs::file_time_type::duration span) {
  std::error_code error;
  const fs::file_time_type written = fs::last_write_time(file, error);
  return moment && !error && written < *moment - span;
}

}  // namespace

RunLog::RunLog(const CaseFiles& files) : name_((fs::path(files.folder) / "log.txt").string()) {
  std::error_code error;
  if (!fs::is_regular_file(name_, error)) return;
  const std::string log = tools::read_file(name_);
  if (!is_of_run(log, files.title)) return;
  text_ = log;
  const fs::file_time_type last_line = fs::last_write_time(name_, error);
  if (error) return;
  last_line_ = last_line;

  const std::optional<double> stopped = number_behind(log, "Simulation stopped at t = ");
  const std::optional<double> interrupted = number_behind(log, "Simulation interrupted at t = ");
  const std::optional<double> seconds = number_behind(log, "Total execution time: ");
  reached_ = stopped ? stopped : interrupted;
  if (stopped)
    return;  // the last line was written at the end, and does not tell when the run began
  if (!seconds) {
    begin_ = last_line;  // that of the set-up: all results come after it
  } else if (interrupted) {
    constexpr double rounding = 2.0;  // s: the log tells whole ones
    begin_ = last_line - std::chrono::duration_cast<fs::file_time_type::duration>(
                             std::chrono::duration<double>(*seconds + rounding));
  }  // a complete run has written every result
}

bool RunLog::is_earlier(const std::string& result) const { return is_before(result, begin_, {}); }

bool RunLog::is_earlier(const std::string& snapshot, double time) const {
  constexpr double rounding = 1e-5;  // of the six digits of the log
  const bool is_beyond = reached_ && time > *reached_ + rounding * std::abs(*reached_);
  return is_beyond || is_earlier(snapshot);
}

bool RunLog::is_earlier_report(const std::string& report) const {
  // The files of a copied case have the times of the copy, in any order.
  constexpr std::chrono::seconds of_a_copy{2};
  return is_before(report, last_line_, of_a_copy) || is_earlier(report);
}

void RunLog::expect_of_run(const std::string& table) const {
  // A run begins its tables during the set-up, a moment before the last line of that in the log.
  if (!is_before(table, begin_, std::chrono::seconds(1))) return;
  throw tools::Error("The file " + table + " is older than " + name_ +
                     ": it is of an earlier run. Let the last one go on to its end.");
}

}  // namespace exports
