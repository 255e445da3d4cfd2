#include "mesh/check/trial_run.hpp"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

#include "case/keys.hpp"
#include "fields/ColumnSurvey.hpp"
#include "quillmere/simulation.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/child_process.hpp"
#include "utils/json_file.hpp"
#include "utils/memory.hpp"

namespace tools::check {

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// What the process of the trial hands back.
struct Measurement {
  double setup_seconds, simulated, timed_seconds, memory_bytes;
  long steps, timed_steps;
  bool is_complete;
  double share_below_zero;
  int deepest_cell;
};

nlohmann::json::json_pointer place_of(const cases::Key& key) {
  return nlohmann::json::json_pointer("/" + std::string(key.path));
}

/// The data file of the trial: outputs go nowhere but to the temporary folder. What has the wrong
/// type stays, for the simulator to refuse.
std::optional<nlohmann::json> trial_data(const std::string& data_file, const std::string& folder) {
  using cases::key;
  std::ifstream stream(data_file, std::ios::binary);
  nlohmann::json data;
  try {
    data = utils::parse_json(stream, data_file);
  } catch (const std::exception&) {
    return {};  // the check of the data file says why
  }
  if (!data.is_object()) return {};
  const auto is_text = [&](const nlohmann::json::json_pointer& place) {
    return data.contains(place) && data[place].is_string();
  };
  const auto folder_place = place_of(key("output/folder"));
  if (is_text(folder_place)) data[folder_place] = folder + "/";
  for (const cases::Key& request :
       {key("output/snapshots of flow"), key("output/results"), key("output/results times"),
        key("output/gauges"), key("output/discharges")}) {
    const auto place = place_of(request);
    if (is_text(place)) data[place.parent_pointer()].erase(place.back());
  }
  return data;
}

/// As many as the simulator would take.
int threads_of_environment() {
  const char* const text = std::getenv("OMP_NUM_THREADS");
  return text == nullptr ? 0 : std::max(std::atoi(text), 0);
}

fields::ColumnSurvey depths_of(const quillmere::Simulation& simulation) {
  const std::vector<double> depths = simulation.read(quillmere::Field::depth);
  const std::vector<double> areas = simulation.areas();
  fields::ColumnSurvey survey;
  for (std::size_t i = 0; i < depths.size(); ++i) {
    survey.add(static_cast<int>(i), depths[i], areas[i]);
  }
  return survey;
}

Measurement measure(const std::string& data_file) {
  constexpr double budget = 1.0;  // s
  constexpr long fewest_steps = 3;
  const Clock::time_point start = Clock::now();
  utils::return_large_blocks();  // as the simulator does
  auto simulation = quillmere::Simulation::open(data_file, {.threads = threads_of_environment()});
  const double t_start = simulation.time();

  Measurement result{};
  result.setup_seconds = seconds_since(start);
  const Clock::time_point first = Clock::now();
  Clock::time_point second = first;
  const auto goes_on = [&] {
    return simulation.steps() < fewest_steps || seconds_since(first) < budget;
  };
  while (!simulation.is_complete() && goes_on()) {
    simulation.step();
    if (simulation.steps() == 1) second = Clock::now();
  }
  result.timed_seconds = seconds_since(second);
  result.steps = simulation.steps();
  result.timed_steps = std::max(result.steps - 1, 0L);
  result.simulated = simulation.time() - t_start;
  result.is_complete = simulation.is_complete();
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  result.memory_bytes = 1024.0 * static_cast<double>(usage.ru_maxrss);
  const fields::ColumnSurvey depths = depths_of(simulation);
  result.share_below_zero = depths.share();
  result.deepest_cell = depths.lowest_cell;
  return result;
}

/// The process of the trial. Its exit status is 0 after a measurement.
[[noreturn]] void run_child(const TemporaryFolder& folder, int result_pipe) {
  const int nothing = open("/dev/null", O_WRONLY);
  const int messages = open(folder.file("messages.txt").c_str(), O_WRONLY | O_CREAT, 0600);
  dup2(nothing, STDOUT_FILENO);
  dup2(messages, STDERR_FILENO);
  try {
    const Measurement result = measure(folder.file("data.json"));
    const bool is_handed_over = write(result_pipe, &result, sizeof result) == sizeof result;
    _exit(is_handed_over ? 0 : 1);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    _exit(1);
  }
}

/// What a trial that was given up said on standard error, without the warnings.
std::string refusal_in(const std::string& file) {
  std::ifstream stream(file);
  std::string text;
  for (std::string line; std::getline(stream, line);) {
    if (line.rfind("Warning", 0) == 0) continue;
    text += (text.empty() ? "" : " ") + line;
  }
  return text;
}

}  // namespace

double TrialRun::expected_steps(double duration) const {
  if (is_complete) return static_cast<double>(steps);
  return static_cast<double>(steps) * duration / simulated;
}

double TrialRun::expected_seconds(double duration) const {
  return setup_seconds + seconds_per_step() * expected_steps(duration);
}

std::optional<TrialRun> trial_run(const std::string& data_file) {
  const TemporaryFolder folder;
  const auto data = trial_data(data_file, folder.path());
  if (!data) return {};
  if (!(std::ofstream(folder.file("data.json")) << *data << std::flush)) {
    throw Error("The file " + folder.file("data.json") +
                " couldn't be written (is the disk full?).");
  }

  int ends[2];
  if (pipe(ends) != 0) throw Error("no pipe for the trial run");
  const pid_t child = fork_child("for the trial run");
  if (child == 0) {
    close(ends[0]);
    run_child(folder, ends[1]);
  }
  close(ends[1]);
  Measurement result{};
  const bool is_measured = read(ends[0], &result, sizeof result) == sizeof result;
  close(ends[0]);
  const int status = wait_for(child);

  TrialRun trial;
  if (!is_measured) {
    trial.refusal = refusal_in(folder.file("messages.txt"));
    if (WIFSIGNALED(status)) {
      trial.refusal += std::string("it ends by a signal: ") + strsignal(WTERMSIG(status));
    }
    if (trial.refusal.empty()) trial.refusal = "it ends without a message";
    return trial;
  }
  trial.setup_seconds = result.setup_seconds;
  trial.steps = result.steps;
  trial.simulated = result.simulated;
  trial.timed_steps = result.timed_steps;
  trial.timed_seconds = result.timed_seconds;
  trial.memory_bytes = result.memory_bytes;
  trial.is_complete = result.is_complete;
  trial.share_below_zero = result.share_below_zero;
  trial.deepest_cell = result.deepest_cell;
  return trial;
}

}  // namespace tools::check
