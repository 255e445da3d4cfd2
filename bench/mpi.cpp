// Times a run of a case on the ranks of an MPI job: mpiexec -n N bench_mpi FOLDER. Rank 0 prints
// cells, steps, set-up time (s), time of a step (ns per cell), and the peak memory of every rank
// (MB).
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "domain/Domain.hpp"
#include "fields/serve.hpp"
#include "main/environment.hpp"
#include "ranks/mpi/MpiGroup.hpp"
#include "utils/memory.hpp"

namespace {

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void run(ranks::Group& group) {
  std::ofstream nowhere("/dev/null");
  utils::Console console(nowhere);
  fields::FlowRequest request = flow_request_of_environment();
  request.ranks.group = &group;
  request.ranks.can_read_files = true;
  const auto start = std::chrono::steady_clock::now();
  Domain domain("data.json", {.log = nowhere, .console = console, .flow = request});
  const double setup = seconds_since(start);
  const auto start_loop = std::chrono::steady_clock::now();
  domain.Update([] { return true; });
  const double loop = seconds_since(start_loop);
  std::ifstream cells("cells.txt");
  double count = 0.0;
  cells >> count;
  const auto steps = static_cast<double>(domain.clock().steps);
  std::printf("%.0f %.0f %.3f %.2f", count, steps, setup, 1e9 * loop / (count * steps));
}

double peak_memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return 1024e-6 * static_cast<double>(usage.ru_maxrss);
}

}  // namespace

int main(int argc, char** argv) {
  utils::return_large_blocks();  // as the program does
  const ranks::MpiSession session(argc, argv);
  ranks::MpiGroup group;
  if (argc < 2) return 2;
  std::filesystem::current_path(argv[1]);  // of all ranks, which read the case together
  if (group.rank() == 0) {
    run(group);
    fields::end_service(group, 0);
  } else {
    fields::serve(group, [] { return false; });
  }
  const double own = peak_memory();
  std::vector<double> all(static_cast<std::size_t>(group.size()));
  group.gather_all(std::as_bytes(std::span(&own, 1)), std::as_writable_bytes(std::span(all)));
  if (group.rank() > 0) return 0;
  for (const double peak : all) std::printf(" %.1f", peak);
  std::printf("\n");
}
