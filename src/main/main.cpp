// Start-up of a run.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "case/planned_files.hpp"
#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "main/credits.hpp"
#include "main/usage.hpp"
#include "report/RunReport.hpp"
#include "utils/InputParser.hpp"
#include "utils/WriterThread.hpp"
#include "utils/files.hpp"
#include "utils/memory.hpp"
#include "utils/signals.hpp"
#include "utils/standard_streams.hpp"
#include "utils/stop.hpp"

namespace {

void warn_of_strange_options(const utils::InputParser& parser) {
  for (const std::string& what : parser.strange_options(known_options)) utils::warn(what);
  if (parser.cmdOptionExists("-f") && parser.getCmdOption("-f").empty()) {
    utils::warn("\"-f\" lacks the name of the data file behind it.");
  }
}

/// Takes the data file (asking for it if it is not given) and the console echo from the options.
void parseInputs(utils::InputParser parser) {
  _dataFile = parser.getCmdOption("-f");
  if (_dataFile.empty()) {
    std::cout << "Please provide the input data file name: ";
    std::cin >> _dataFile;
    std::cout << std::endl;
  }
  Globals::displayMessage = !parser.cmdOptionExists("-nodisplay");
}

std::string name_of_report(const utils::InputParser& parser) {
  const std::string& name = parser.getCmdOption("--report");
  if (name.empty() || name.starts_with('-')) {
    throw std::runtime_error("Error. --report needs the name of a file.");
  }
  return name;
}

/// Ends the run, before it opens any result, if one would destroy an input or another result.
void refuse_results_that_destroy(const std::string& report) {
  const std::vector<std::string> conflicts =
      cases::conflicts_of(cases::plan_files(_dataFile, report));
  if (conflicts.empty()) return;
  std::string sentence = conflicts.front();
  sentence.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence.front())));
  utils::fatal("Error. " + sentence + ".\n");
}

/// Ends a run early: says why, lets the writers finish their files, closes the log, and writes the
/// report if there is one (null: none). Answers the exit status.
int end_early(const std::string& message, int status, RunReport* report) {
  std::cerr << message;
  utils::flush_console();
  utils::wait_for_writers();
  if (Globals::spyFile.is_open()) Globals::spyFile.close();
  if (report != nullptr) report->write(status, message);
  return status;
}

void print_banner() {
  std::ostream& log = Globals::spyFile;
  utils::print_delimitator(log);
  utils::write_and_display(log, "Welcome to Quillmere !\n");
  utils::print_delimitator(log);
  write_credits(log);
  utils::print_delimitator(log);
}

/// Whole seconds, cut off towards zero; what no int holds becomes the largest or smallest one.
int whole_seconds(double seconds) {
  constexpr double smallest = std::numeric_limits<int>::min();
  constexpr double largest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(seconds, smallest, largest));
}

/// Ends the run if the log is not complete.
void close_log() {
  if (!Globals::spyFile.is_open()) return;  // it couldn't be created
  Globals::spyFile.close();
  if (Globals::spyFile.good()) return;
  utils::fatal("Error. The file log.txt couldn't be written completely (is the disk full?).\n");
}

/// The signals, streams and memory of the process: nothing of theirs may end it without a word, or
/// in the middle of a result.
void secure_process() {
  utils::open_standard_streams();
  utils::let_writes_fail();
  utils::end_between_lines();
  utils::end_where_memory_is_missing();
}

/// Answers the exit status. The run stays in its place, for those who watched it.
int run(std::optional<Domain>& domain, Watchers watchers) {
  // Without a buffer: a piece that a full disk took only in part would be written again at the end.
  Globals::spyFile.rdbuf()->pubsetbuf(nullptr, 0);
  Globals::spyFile.open("log.txt");
  if (!Globals::spyFile.is_open()) utils::warn("The file log.txt couldn't be created.");
  Globals::spyFile << std::unitbuf;  // what is logged is on the disk, whatever happens next
  print_banner();
  if (_dataFile.empty()) {
    print_usage(std::cerr);
    utils::fatal("Error. No data file is named, neither behind -f nor on standard input.\n");
  }

  domain.emplace(_dataFile, watchers);

  const std::time_t start = std::time(nullptr);
  domain->Update();
  const std::time_t end = std::time(nullptr);
  utils::write_and_display(
      Globals::spyFile, "Total execution time: " + std::to_string(static_cast<long>(end - start)) +
                            " sec. for " +
                            std::to_string(whole_seconds(Globals::t - Globals_Params::tStart)) +
                            " sec. of simulation.\n");
  close_log();
  return Domain::is_complete() ? 0 : 128 + utils::interrupting_signal();
}

/// Exit status of a call that only writes to the console.
int status_of_words() {
  utils::flush_console();
  return std::cout.good() ? 0 : -1;
}

std::string beyond_memory(const std::exception& error) {
  return "Error. The run needs more memory than there can be (" + std::string(error.what()) +
         ").\n";
}

}  // namespace

int main(int argc, char** argv) {
  secure_process();
  std::optional<RunReport> report;  // outlives the errors that it tells of, as does the run
  std::optional<Domain> domain;
  const auto end_early = [&](const std::string& message, int status) {
    return ::end_early(message, status, report ? &*report : nullptr);
  };
  try {
    const utils::InputParser parser(argc, argv);
    if (parser.cmdOptionExists("--help")) {
      print_usage(std::cout);
      return status_of_words();
    }
    if (parser.cmdOptionExists("--version")) {
      print_version(std::cout);
      return status_of_words();
    }
    warn_of_strange_options(parser);
    parseInputs(parser);
    const bool has_report = parser.cmdOptionExists("--report");
    const std::string report_name = has_report ? name_of_report(parser) : "";
    const std::string given_name = std::exchange(_dataFile, utils::readable_again(_dataFile));
    refuse_results_that_destroy(report_name);
    if (has_report) report.emplace(report_name, given_name);
    std::optional<Progress> progress;
    if (parser.cmdOptionExists("--progress")) progress.emplace(Progress::on_standard_error());
    const int status = run(domain, {.progress = progress ? &*progress : nullptr,
                                    .report = report ? &*report : nullptr});
    utils::flush_console();
    if (!report) return status;
    return report->write(status, "") ? status : -1;
  } catch (const utils::FatalError& error) {
    std::cout << error.output() << std::flush;
    return end_early(error.text(), error.status());
  } catch (const std::length_error& error) {
    return end_early(beyond_memory(error), -1);
  } catch (const std::bad_alloc& error) {  // a size that no machine has; others never get here
    return end_early(beyond_memory(error), -1);
  } catch (const std::exception& error) {
    return end_early(error.what() + std::string("\n"), -1);
  }
}
