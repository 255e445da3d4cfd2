// Times a whole run on a generated mesh:
// bench_run CELLS [KIND [STEPS [report|checkpoint|results [SNAPSHOTS]|SCHEME]]].
// Prints one row of a table: triangles, steps, set-up time, time of a step per cell, peak memory
// per cell. STEPS is about their number; without it the run takes a second or so. With "report" it
// writes a report, with "results" snapshots (10) in NetCDF, and says what the loop lost by each;
// with "checkpoint" it keeps checkpoints, one in the middle of the run, and says for how long the
// loop stood for that and how long it took to write.
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
#include <numeric>
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

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<long>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// How long the passes of the loop took, s.
class PassTimes {
 public:
  /// To be called before every step.
  void note_pass() {
    const Clock::time_point now = Clock::now();
    if (begun_) durations_.push_back(std::chrono::duration<double>(now - *begun_).count());
    begun_ = now;
  }
  const std::vector<double>& durations() const { return durations_; }

 private:
  std::optional<Clock::time_point> begun_;
  std::vector<double> durations_;
};

/// Measures what the loop loses by a snapshot: the pass in which it is handed over, and those after
/// it, beside the writer, against the usual ones on both sides of them. The machine's own changes
/// of speed, which are larger than that, fall out so.
class SnapshotCost {
 public:
  SnapshotCost(int snapshots, double end) : distance_(end / snapshots) {}

  /// To be called before every step, at time t (s).
  void note_pass(double t) {
    times_.note_pass();
    if (t < next_) return;
    passes_.push_back(times_.durations().size());
    next_ = distance_ * static_cast<double>(passes_.size());
  }
  void print() const {
    std::vector<double> losses, usual;
    for (const std::size_t pass : passes_) {
      if (pass < beside_writer || pass + 2 * beside_writer > times_.durations().size()) continue;
      usual.push_back(usual_around(pass));
      losses.push_back(sum(pass) - beside_writer * usual.back());
    }
    if (losses.empty()) return;
    std::printf("a snapshot takes %.2f ms from the loop (a step takes %.2f ms; medians of %zu)\n",
                1e3 * median(losses), 1e3 * median(usual), losses.size());
  }

 private:
  static constexpr std::size_t beside_writer = 16;  ///< passes

  double sum(std::size_t pass) const {
    const auto first = times_.durations().begin() + static_cast<long>(pass);
    return std::accumulate(first, first + beside_writer, 0.0);
  }
  double usual_around(std::size_t pass) const {
    const auto first = times_.durations().begin() + static_cast<long>(pass);
    std::vector<double> around(first - beside_writer, first);
    around.insert(around.end(), first + beside_writer, first + 2 * beside_writer);
    return median(around);
  }

  double distance_;  ///< of snapshots, s
  double next_ = 0.0;
  PassTimes times_;
  std::vector<std::size_t> passes_;  ///< with a snapshot
};

/// Wishes for a checkpoint after a number of steps, and measures what it costs.
class CheckpointCost {
 public:
  explicit CheckpointCost(long after) : after_(after) {}

  checkpoint::Request request() {
    return {.name = "kept", .interval = 1e9, .is_wished = [this] { return passes_ == after_; }};
  }
  /// To be called before every step.
  void note_pass() {
    times_.note_pass();
    if (++passes_ == after_) wished_ = Clock::now();
    if (passes_ <= after_ || written_ > 0.0) return;
    if (checkpoint::find_files("kept")[0].look.trouble.empty()) written_ = seconds_since(wished_);
  }
  void print() const {
    const double with_checkpoint = times_.durations().at(static_cast<std::size_t>(after_ - 1));
    const double usual = median(times_.durations());
    std::printf(
        "checkpoint of %.1f MB: the loop stood %.1f ms (a step takes %.1f ms), written %.2f s "
        "after it was wished\n",
        1e-6 * static_cast<double>(std::filesystem::file_size("kept.a")),
        1e3 * (with_checkpoint - usual), 1e3 * usual, written_);
  }

 private:
  long after_;
  long passes_ = 0;
  PassTimes times_;
  Clock::time_point wished_;
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
  constexpr double usual_step = 0.05;  // s
  const double end = usual_step * steps_wanted;
  const pid_t writer = fork();  // so that the peak memory is that of the run
  if (writer == 0) {
    write_channel_case(channel, kind->second, scheme, folder, end);
    std::filesystem::current_path(folder);
    if (option == "results") wish_results(snapshots, end);
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
  SnapshotCost snapshot_cost(snapshots, end);
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
    if (option == "results") snapshot_cost.note_pass(domain.clock().t);
    return true;
  });
  const double loop = seconds_since(start_loop);

  const long steps = domain.clock().steps;
  const double cell_steps = static_cast<double>(channel.cells()) * static_cast<double>(steps);
  std::printf("%12d %8ld %12.3f %18.1f %18.0f\n", channel.cells(), steps, setup,
              1e9 * loop / cell_steps, peak_memory_bytes() / channel.cells());
  if (option == "checkpoint") cost.print();
  if (option == "results") snapshot_cost.print();
  if (report) report->write(0, "");
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
  return 0;
}
