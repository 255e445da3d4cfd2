// Times a whole run on a generated mesh:
// bench_run CELLS [KIND [STEPS [report|checkpoint|results [SNAPSHOTS]|SCHEME]]].
// Prints one row of a table: triangles, steps, set-up time, time of a step per cell, peak memory
// per cell. STEPS is about their number; without it the run takes a second or so. With "report" it
// writes a report, with "results" snapshots (10) in NetCDF; with "checkpoint" it keeps checkpoints,
// one in the middle of the run, and says for how long the loop stood for that and how long it took
// to write.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "channel_case.hpp"
#include "checkpoint/checkpoint_pair.hpp"
#include "domain/Domain.hpp"
#include "main/environment.hpp"
#include "report/RunReport.hpp"

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double peak_memory_bytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return 1024.0 * static_cast<double>(usage.ru_maxrss);
}

/// Lets the case of this folder write results so many times up to its end (s).
void wish_results(int snapshots, double end) {
  nlohmann::json data = nlohmann::json::parse(std::ifstream("data.json"));
  data["output"]["results"] = "results.nc";
  data["output"]["results times"] = "times.txt";
  std::ofstream("data.json") << data;
  std::ofstream times("times.txt");
  times << snapshots;
  for (int i = 0; i < snapshots; ++i) times << ' ' << end * i / snapshots;
}

std::string make_folder() {
  std::string name = (std::filesystem::temp_directory_path() / "quillmere_bench_XXXXXX").string();
  return mkdtemp(name.data());
}

/// Wishes for a checkpoint after a number of steps, and measures what it costs.
class CheckpointCost {
 public:
  explicit CheckpointCost(long after) : after_(after) {}

  checkpoint::Request request() {
    return {.name = "kept", .interval = 1e9, .is_wished = [this] { return passes_ == after_; }};
  }
  /// To be called before every step.
  void note_pass() {
    const Clock::time_point now = Clock::now();
    if (passes_ > 0) durations_.push_back(std::chrono::duration<double>(now - last_).count());
    last_ = now;
    if (++passes_ == after_) wished_ = now;
    if (passes_ <= after_ || written_ > 0.0) return;
    if (checkpoint::find_files("kept")[0].look.trouble.empty()) written_ = seconds_since(wished_);
  }
  void print() {
    const double with_checkpoint = durations_.at(static_cast<std::size_t>(after_ - 1));
    std::nth_element(durations_.begin(),
                     durations_.begin() + static_cast<long>(durations_.size() / 2),
                     durations_.end());
    const double usual = durations_[durations_.size() / 2];
    std::printf(
        "checkpoint of %.1f MB: the loop stood %.1f ms (a step takes %.1f ms), written %.2f s "
        "after it was wished\n",
        1e-6 * static_cast<double>(std::filesystem::file_size("kept.a")),
        1e3 * (with_checkpoint - usual), 1e3 * usual, written_);
  }

 private:
  long after_;
  long passes_ = 0;
  std::vector<double> durations_;  ///< of the passes, s
  Clock::time_point last_, wished_;
  double written_ = 0.0;  ///< s
};

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, ChannelKind> kinds = {{"wet", ChannelKind::wet},
                                                    {"dry", ChannelKind::dry},
                                                    {"shuffled", ChannelKind::shuffled},
                                                    {"sources", ChannelKind::sources},
                                                    {"sediment", ChannelKind::sediment}};
  const int wanted = argc > 1 ? std::atoi(argv[1]) : 0;
  const auto kind = kinds.find(argc > 2 ? argv[2] : "wet");
  if (wanted < 100 || kind == kinds.end()) {
    std::cerr << "usage: bench_run CELLS [wet|dry|shuffled|sources|sediment [STEPS "
                 "[report|checkpoint|results [SNAPSHOTS]|SCHEME]]], at least 100 cells\n";
    return 2;
  }
  const double steps_wanted =
      argc > 3 ? std::max(1.0, std::atof(argv[3])) : std::clamp(3e7 / wanted, 50.0, 3000.0);
  const std::string option = argc > 4 ? argv[4] : "";
  const int snapshots = argc > 5 ? std::max(1, std::atoi(argv[5])) : 10;
  const std::string scheme = cases::find_scheme(option) != nullptr ? option : "LHLLC";
  const Channel channel = channel_of(wanted);
  const std::string folder = make_folder();
  const pid_t writer = fork();  // so that the peak memory is that of the run
  if (writer == 0) {
    constexpr double usual_step = 0.05;  // s
    write_channel_case(channel, kind->second, scheme, folder, usual_step * steps_wanted);
    std::filesystem::current_path(folder);
    if (option == "results") wish_results(snapshots, usual_step * steps_wanted);
    _exit(0);
  }
  int status = 0;
  waitpid(writer, &status, 0);
  std::filesystem::current_path(folder);

  const auto start = Clock::now();
  std::optional<RunReport> report;
  if (option == "report") report.emplace("report.json", "data.json");
  std::ofstream log("log.txt");
  std::ofstream nowhere("/dev/null");  // the clock would stand in the table
  utils::Console console(nowhere);
  CheckpointCost cost(static_cast<long>(steps_wanted / 2));
  const checkpoint::Request request = cost.request();
  Domain domain("data.json", {.log = log,
                              .console = console,
                              .flow = flow_request_of_environment(),
                              .report = report ? &*report : nullptr,
                              .checkpoints = option == "checkpoint" ? &request : nullptr});
  const double setup = seconds_since(start);
  const auto start_loop = Clock::now();
  domain.Update([&] {
    if (option == "checkpoint") cost.note_pass();
    return true;
  });
  const double loop = seconds_since(start_loop);

  const long steps = domain.clock().steps;
  const double cell_steps = static_cast<double>(channel.cells()) * static_cast<double>(steps);
  std::printf("%12d %8ld %12.3f %18.1f %18.0f\n", channel.cells(), steps, setup,
              1e9 * loop / cell_steps, peak_memory_bytes() / channel.cells());
  if (option == "checkpoint") cost.print();
  if (report) report->write(0, "");
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
  return 0;
}
