// Steps of a case on ranks that are threads of this process, as many as there may be:
// bench_ranks FOLDER RANKS STEPS [fixed]. With "fixed" the cells keep the ranks that they start
// with. Prints cells, ranks, steps, imbalance (time of the busiest rank over the mean, by the time
// that threads have a core, from look to look), that of the second half, that of the cells that
// ranks computed, how often cells were shared out anew, the time that this took the busiest rank
// over that of the steps of all in the mean, and per step: the messages of a rank and its bytes,
// both as means, reductions, and orders of rank 0.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "case/EndAtFirstError.hpp"
#include "case/read_case.hpp"
#include "fields/Clock.hpp"
#include "fields/RanksFlow.hpp"
#include "fields/serve.hpp"
#include "ranks/CountingGroup.hpp"
#include "ranks/InProcess.hpp"

namespace {

using test_ranks::CountingGroup;
using test_ranks::Counts;

cases::ReadCase read(const std::string& folder) {
  std::filesystem::current_path(folder);
  std::ofstream nowhere("/dev/null");
  utils::Console console(nowhere);
  cases::EndAtFirstError diagnostics;
  return cases::read_case("data.json", {nowhere, console}, diagnostics);
}

void run(const cases::Case& contents, ranks::Group& group, int steps, bool are_balanced,
         Counts& counts) {
  cases::EndAtFirstError diagnostics;
  const fields::RanksRequest request{.group = &group, .are_balanced = are_balanced};
  constexpr int threads = 1;
  fields::RanksFlow flow(contents, diagnostics, request, threads, {});
  fields::Clock clock = fields::clock_at_start(contents, flow);
  counts.reset();
  ranks::Uneven first_half;
  while (clock.steps < steps && clock.t < contents.t_end) {
    flow.leave_alone_until(clock.steps + 1 < steps ? contents.t_end : clock.t);
    fields::advance(flow, contents, clock);
    if (clock.steps > steps / 2 && first_half.mean == 0.0) first_half = flow.balance().seconds();
  }
  const ranks::Balance& balance = flow.balance();
  const ranks::Uneven &all = balance.seconds(), &cells = balance.cells();
  const double of_second_half = (all.largest - first_half.largest) / (all.mean - first_half.mean);
  const auto per_step = [&](long count) {
    return static_cast<double>(count) / static_cast<double>(clock.steps);
  };
  const fields::ExecutionPath path = flow.execution_path();
  std::printf("%d %d %ld %.4f %.4f %.4f %d %.4f %.3f %.1f %.3f %.3f\n", contents.mesh.n_cells(),
              path.ranks, clock.steps, path.imbalance, of_second_half, cells.imbalance(),
              path.recuts, balance.moving() / all.mean, per_step(counts.messages) / path.ranks,
              per_step(counts.bytes) / path.ranks, per_step(counts.reductions),
              per_step(counts.orders));
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 2 ? std::atoi(argv[2]) : 0, steps = argc > 3 ? std::atoi(argv[3]) : 0;
  const bool are_balanced = !(argc > 4 && argv[4] == std::string("fixed"));
  if (count < 1 || steps < 1) {
    std::cerr << "usage: bench_ranks FOLDER RANKS STEPS [fixed]\n";
    return 2;
  }
  const cases::ReadCase read_case = read(argv[1]);
  Counts counts;
  ranks::InProcess job(count);
  std::vector<std::thread> others;
  for (int rank = 1; rank < count; ++rank) {
    others.emplace_back([&, rank] {
      CountingGroup group(job.group(rank), counts);
      fields::serve(group, [] { return false; });
    });
  }
  CountingGroup group(job.group(0), counts);
  run(read_case.contents, group, steps, are_balanced, counts);
  fields::end_service(group, 0);
  for (std::thread& other : others) other.join();
}
