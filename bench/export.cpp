// Times the export of snapshots to NetCDF: bench_export PROGRAM CELLS SNAPSHOTS generates a case
// with results, runs "PROGRAM netcdf" on it and prints one row of a table: triangles, snapshots,
// size of their text, time, text per second, peak memory in texts of one snapshot.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "case/MeshReader.hpp"
#include "channel_case.hpp"
#include "model/MeshNode.hpp"
#include "utils/CellTable.hpp"
#include "utils/snapshot_name.hpp"

namespace {

namespace fs = std::filesystem;

/// A snapshot of waves with a dry patch, in numbers with all their digits.
void write_snapshot(const std::vector<MeshNode>& centers, double time, const std::string& name) {
  utils::CellTable table(name, "x\ty\tzb\th\tqx\tqy\n");
  for (const MeshNode& c : centers) {
    const double h = std::max(0.0, 1.0 + 1.2 * std::sin(0.01 * c.x + time) * std::cos(0.02 * c.y));
    const double values[] = {h, h * std::sin(0.1 * c.y), h * std::cos(0.1 * c.x)};
    table.add_row(c.x, c.y, c.z, values);
  }
  table.commit();
}

std::vector<MeshNode> centers_of(const std::string& folder) {
  std::vector<MeshNode> nodes;
  utils::MeshReader node_reader(folder + "/nodes.txt", "node", 3);
  for (int i = 0; i < node_reader.get_number_of_elements(); ++i) {
    nodes.emplace_back(node_reader.read_next_node(3));
  }
  std::vector<MeshNode> centers;
  utils::MeshReader cell_reader(folder + "/cells.txt", "cell", 4);
  for (int i = 0; i < cell_reader.get_number_of_elements(); ++i) {
    MeshNode sum;
    for (const int node : cell_reader.read_next_cell(static_cast<int>(nodes.size()))) {
      sum += nodes[static_cast<std::size_t>(node)];
    }
    centers.push_back(sum / 3.0);
  }
  return centers;
}

/// Adds snapshots and an envelope to a case.
void add_results(const std::string& folder, int count) {
  const std::vector<MeshNode> centers = centers_of(folder);
  std::ofstream times(folder + "/times.txt");
  times << count;
  for (int i = 0; i < count; ++i) {
    times << ' ' << i;
    write_snapshot(centers, i, folder + "/" + utils::snapshot_name(i));
  }
  nlohmann::json data = nlohmann::json::parse(std::ifstream(folder + "/data.json"));
  data["output"]["snapshots of flow"] = "times.txt";
  std::ofstream(folder + "/data.json") << data;
  std::ofstream envelope(folder + "/enveloppe.txt");
  for (const MeshNode& c : centers) envelope << c << "2\n";
}

/// Bytes of all snapshots of a folder.
double snapshot_bytes(const std::string& folder) {
  double bytes = 0.0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().rfind("pic_", 0) == 0) {
      bytes += static_cast<double>(entry.file_size());
    }
  }
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  const int cells = argc == 4 ? std::atoi(argv[2]) : 0;
  const int snapshots = argc == 4 ? std::atoi(argv[3]) : 0;
  if (cells < 100 || snapshots < 1) {
    std::cerr << "usage: bench_export PROGRAM CELLS SNAPSHOTS, at least 100 and 1\n";
    return 2;
  }
  std::string folder = (fs::temp_directory_path() / "quillmere_bench_XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return 1;
  const Channel channel = channel_of(cells);
  const pid_t writer = fork();  // so that the peak memory is that of the export
  if (writer == 0) {
    write_channel_case(channel, ChannelKind::wet, "LHLLC", folder, 1.0);
    add_results(folder, snapshots);
    _exit(0);
  }
  int status = 0;
  waitpid(writer, &status, 0);
  const double bytes = snapshot_bytes(folder);

  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
    execl(argv[1], argv[1], "netcdf", folder.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  fs::remove_all(folder);
  if (status != 0) {
    std::cerr << argv[1] << " failed\n";
    return 1;
  }
  constexpr double mega = 1e6;
  std::printf("%12d %9d %14.0f %10.2f %12.0f %18.2f\n", channel.cells(), snapshots, bytes / mega,
              time.count(), bytes / mega / time.count(),
              1024.0 * static_cast<double>(usage.ru_maxrss) * snapshots / bytes);
  return 0;
}
