// A call of the program: its options, its log, its run and its end.
#include <algorithm>
#include <cctype>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "case/data_file_schema.hpp"
#include "case/planned_files.hpp"
#include "checkpoint/checkpoint_pair.hpp"
#include "domain/Domain.hpp"
#include "main/credits.hpp"
#include "main/environment.hpp"
#include "main/program.hpp"
#include "main/usage.hpp"
#include "report/RunReport.hpp"
#include "utils/InputParser.hpp"
#include "utils/WriterThread.hpp"
#include "utils/files.hpp"
#include "utils/memory.hpp"
#include "utils/number_text.hpp"
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

/// The data file: that of the options, or else it is asked for.
std::string data_file_of(const utils::InputParser& parser) {
  std::string name = parser.getCmdOption("-f");
  if (name.empty()) {
    std::cout << "Please provide the input data file name: ";
    std::cin >> name;
    std::cout << std::endl;
  }
  return name;
}

std::string name_of_report(const utils::InputParser& parser) {
  const std::string& name = parser.getCmdOption("--report");
  if (name.empty() || name.starts_with('-')) {
    throw std::runtime_error("Error. --report needs the name of a file.");
  }
  return name;
}

/// The value of an option, if it is given; ends the run where nothing stands behind it.
std::string name_behind(const utils::InputParser& parser, const std::string& option) {
  if (!parser.cmdOptionExists(option)) return "";
  const std::string& name = parser.getCmdOption(option);
  if (name.empty() || name.starts_with('-')) {
    throw std::runtime_error("Error. " + option + " needs the name of a checkpoint.");
  }
  return name;
}

std::optional<checkpoint::Request> checkpoints_of(const utils::InputParser& parser) {
  const std::string every = "--checkpoint-every";
  checkpoint::Request request{.name = name_behind(parser, "--checkpoint")};
  if (request.name.empty()) {
    if (!parser.cmdOptionExists(every)) return {};
    throw std::runtime_error("Error. " + every + " is said without --checkpoint.");
  }
  request.is_wished = utils::take_checkpoint_wish;
  if (!parser.cmdOptionExists(every)) return request;
  const std::string& text = parser.getCmdOption(every);
  const std::optional<double> minutes = utils::parse_finite_number(text);
  if (!minutes || !(*minutes > 0.0)) {
    throw std::runtime_error("Error. " + every + " needs a number of minutes above 0, found " +
                             utils::quoted_start(text) + ".");
  }
  constexpr double seconds_per_minute = 60.0;
  request.interval = seconds_per_minute * *minutes;
  return request;
}

std::optional<RestartRequest> restart_of(const utils::InputParser& parser) {
  const bool despite_changes = parser.cmdOptionExists("--restart-anyway");
  const std::string name = name_behind(parser, "--restart");
  if (!name.empty()) return RestartRequest{name, despite_changes};
  if (!despite_changes) return {};
  throw std::runtime_error("Error. --restart-anyway is said without --restart.");
}

/// The device that the steps run on; empty: none is asked for.
std::string device_of(const utils::InputParser& parser) {
  if (!parser.cmdOptionExists("--device")) return "";
  const std::string& name = parser.getCmdOption("--device");
  if (name.empty() || name.starts_with('-')) {
    throw std::runtime_error("Error. --device needs card, emulated or watched behind it.");
  }
  return name;
}

/// Whether several processes can read these files, each a piece of its own: pipes they cannot.
bool can_be_shared(const std::vector<std::string>& inputs) {
  return std::all_of(inputs.begin(), inputs.end(), [](const std::string& name) {
    std::error_code ignored;
    return !std::filesystem::exists(name, ignored) ||
           std::filesystem::is_regular_file(name, ignored);
  });
}

/// Ends the run, before it opens any result, if one would destroy an input or another result.
void refuse_results_that_destroy(cases::PlannedFiles files, const std::string& checkpoint) {
  if (!checkpoint.empty()) {
    for (const std::string& name : checkpoint::files_of(checkpoint)) {
      files.results.push_back({"the checkpoint", name, false});
    }
  }
  const std::vector<std::string> conflicts = cases::conflicts_of(files);
  if (conflicts.empty()) return;
  std::string sentence = conflicts.front();
  sentence.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence.front())));
  utils::fatal("Error. " + sentence + ".\n");
}

/// What a call of the program works with. The run stays until the end, for those who watched it.
struct Program {
  std::ofstream log_file = {};
  std::stringbuf kept_log = {};  ///< until a run that goes on from a checkpoint is sure that it can
  std::ostream log{&kept_log};
  utils::Console console{std::cout};
  std::optional<Progress> progress = {};
  std::optional<RunReport> report = {};
  std::optional<checkpoint::Request> checkpoints = {};
  std::optional<RestartRequest> restart = {};
  std::string device = {};  ///< of the options
  std::optional<Domain> domain = {};
  ranks::Group* group = nullptr;     ///< of the ranks that share the run; null: there is one
  bool can_share_files = false;      ///< of the case, among ranks
  bool other_rank_is_ended = false;  ///< by a signal that did not come here

  /// The signal that ends the run; 0: it goes on.
  int interrupting_signal() const {
    const int own = utils::interrupting_signal();
    return own == 0 && other_rank_is_ended ? SIGTERM : own;
  }

  /// Whether files may be written: not before a run that goes on is sure that it can.
  bool may_write() const { return !restart || domain; }
};

/// Ends a run early: says why, lets the writers finish their files, closes the log, and writes the
/// report if there is one. Answers the exit status.
int end_early(Program& program, const std::string& message, int status) {
  std::cerr << message;
  program.console.flush();
  utils::wait_for_writers();
  if (program.log_file.is_open()) program.log_file.close();
  if (program.report && program.may_write()) program.report->write(status, message);
  return status;
}

void print_banner(std::ostream& log, utils::Console& console) {
  utils::print_delimitator(log);
  utils::write_and_display(log, console, "Welcome to Quillmere !\n");
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

/// From now on the log is a file, which begins with what was logged so far.
void open_log(Program& program) {
  std::ofstream& file = program.log_file;
  // Without a buffer: a piece that a full disk took only in part would be written again at the end.
  file.rdbuf()->pubsetbuf(nullptr, 0);
  file.open("log.txt", program.restart ? std::ios::app : std::ios::out);
  if (!file.is_open()) utils::warn("The file log.txt couldn't be created.");
  file << program.kept_log.str();
  program.log.rdbuf(file.rdbuf());
  program.log << std::unitbuf;  // what is logged is on the disk, whatever happens next
}

/// Ends the run if the log is not complete.
void close_log(Program& program) {
  if (!program.log_file.is_open()) return;  // it couldn't be created
  program.log_file.close();
  if (program.log_file.good() && program.log.good()) return;
  utils::fatal("Error. The file log.txt couldn't be written completely (is the disk full?).\n");
}

/// What environment and options ask for, on the ranks that there are.
fields::FlowRequest flow_request_of(Program& program) {
  fields::FlowRequest request = flow_request_of_environment();
  if (!program.device.empty()) {
    request.path = "device";
    request.device = program.device;
  }
  request.ranks.group = program.group;
  request.ranks.can_read_files = program.can_share_files;
  if (program.group != nullptr && request.most_threads <= 0) {
    request.most_threads = program.group->cores();
  }
  request.ranks.on_stop = [&program] { program.other_rank_is_ended = true; };
  return request;
}

/// Answers the exit status.
int run(Program& program, const std::string& data_file) {
  std::ostream& log = program.log;
  if (!program.restart) open_log(program);
  print_banner(log, program.console);
  if (data_file.empty()) {
    print_usage(std::cerr);
    utils::fatal("Error. No data file is named, neither behind -f nor on standard input.\n");
  }

  const RunSettings settings{.log = log,
                             .console = program.console,
                             .flow = flow_request_of(program),
                             .progress = program.progress ? &*program.progress : nullptr,
                             .report = program.report ? &*program.report : nullptr,
                             .checkpoints = program.checkpoints ? &*program.checkpoints : nullptr,
                             .restart = program.restart ? &*program.restart : nullptr,
                             .version = QUILLMERE_VERSION};
  Domain& domain = program.domain.emplace(data_file, settings);
  if (program.restart) open_log(program);

  const std::time_t start = std::time(nullptr);
  utils::listen_for_interruption();
  domain.Update([&program] { return program.interrupting_signal() == 0; });
  const std::time_t end = std::time(nullptr);
  utils::write_and_display(
      log, program.console,
      "Total execution time: " + std::to_string(static_cast<long>(end - start)) + " sec. for " +
          std::to_string(whole_seconds(domain.simulated())) + " sec. of simulation.\n");
  close_log(program);
  return domain.is_complete() ? 0 : 128 + program.interrupting_signal();
}

/// Exit status of a call that only writes to the console.
int status_of_words(Program& program) {
  program.console.flush();
  return std::cout.good() ? 0 : -1;
}

/// Does what the command line asks for. Answers the exit status.
int serve(Program& program, const utils::InputParser& parser) {
  if (parser.cmdOptionExists("--help")) {
    print_usage(std::cout);
    return status_of_words(program);
  }
  if (parser.cmdOptionExists("--version")) {
    print_version(std::cout);
    return status_of_words(program);
  }
  if (parser.cmdOptionExists("--schema")) {
    std::cout << cases::data_file_schema();
    return status_of_words(program);
  }
  warn_of_strange_options(parser);
  const std::string given_name = data_file_of(parser);
  if (parser.cmdOptionExists("-nodisplay")) program.console.mute();
  const bool has_report = parser.cmdOptionExists("--report");
  const std::string report_name = has_report ? name_of_report(parser) : "";
  program.checkpoints = checkpoints_of(parser);
  program.restart = restart_of(parser);
  program.device = device_of(parser);
  if (program.checkpoints) utils::listen_for_checkpoint_wishes();
  const std::string data_file = utils::readable_again(given_name);
  const cases::PlannedFiles files = cases::plan_files(data_file, report_name);
  program.can_share_files = data_file == given_name && can_be_shared(files.inputs);
  refuse_results_that_destroy(files, program.checkpoints ? program.checkpoints->name : "");
  if (has_report) program.report.emplace(report_name, given_name);
  if (parser.cmdOptionExists("--progress")) {
    program.progress.emplace(Progress::on_standard_error());
  }
  const int status = run(program, data_file);
  program.console.flush();
  if (!program.report) return status;
  return program.report->write(status, "") ? status : -1;
}

std::string beyond_memory(const std::exception& error) {
  return "Error. The run needs more memory than there can be (" + std::string(error.what()) +
         ").\n";
}

}  // namespace

void secure_process() {
  utils::open_standard_streams();
  utils::let_writes_fail();
  utils::end_between_lines();
  utils::end_where_memory_is_missing();
  utils::return_large_blocks();
}

int call_program(int argc, char** argv, ranks::Group* group) {
  Program program;
  program.group = group;
  try {
    return serve(program, utils::InputParser(argc, argv));
  } catch (const utils::FatalError& error) {
    std::cout << error.output() << std::flush;
    return end_early(program, error.text(), error.status());
  } catch (const std::length_error& error) {
    return end_early(program, beyond_memory(error), -1);
  } catch (const std::bad_alloc& error) {  // a size that no machine has; others never get here
    return end_early(program, beyond_memory(error), -1);
  } catch (const std::exception& error) {
    return end_early(program, error.what() + std::string("\n"), -1);
  }
}
