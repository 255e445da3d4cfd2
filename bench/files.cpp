// Rates of reading and writing, next to those of formatted streams on the same files, of a snapshot
// in NetCDF, next to one as text, and of point location: bench_files CELLS.
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <string>

#include "case/MeshReader.hpp"
#include "channel_case.hpp"
#include "domain/Domain.hpp"
#include "model/MeshNode.hpp"
#include "ugrid/ClassicFile.hpp"
#include "ugrid/UgridLayout.hpp"
#include "utils/CellTable.hpp"

namespace {

using Clock = std::chrono::steady_clock;

/// The shortest of some repeats, s.
double seconds_of(const std::function<void()>& work) {
  double shortest = 1e30;
  for (int i = 0; i < 5; ++i) {
    const auto start = Clock::now();
    work();
    shortest = std::min(shortest, std::chrono::duration<double>(Clock::now() - start).count());
  }
  return shortest;
}

double megabytes_of(const std::string& file) {
  return 1e-6 * static_cast<double>(std::filesystem::file_size(file));
}

void print_row(const char* what, double megabytes, double ours, double streams) {
  std::printf("%-22s %10.1f %12.0f %12.0f %10.1f\n", what, megabytes, megabytes / ours,
              megabytes / streams, streams / ours);
}

void refuse(bool differs) {
  if (!differs) return;
  std::cerr << "the two ways to do it differ\n";
  std::exit(1);
}

// --- Reading: every loop adds up what it reads, so that nothing is left out -------------------

double sum_of_nodes(const std::string& file) {
  utils::MeshReader reader(file, "node", 3);
  double sum = 0.0;
  for (int i = reader.get_number_of_elements(); i > 0; --i) {
    for (const double value : reader.read_next_node(3)) sum += value;
  }
  return sum;
}

std::int64_t sum_of_cells(const std::string& file, int n_nodes) {
  utils::MeshReader reader(file, "cell", 2);
  std::int64_t sum = 0;
  for (int i = reader.get_number_of_elements(); i > 0; --i) {
    sum += 3;
    for (const int node : reader.read_next_cell(n_nodes)) sum += node;
  }
  return sum;
}

std::int64_t sum_of_edges(const std::string& file, int n_nodes, int n_cells) {
  utils::MeshReader reader(file, "edge", 5);
  std::int64_t sum = 0;
  for (int i = reader.get_number_of_elements(); i > 0; --i) {
    const auto& [left, right, node1, node2, code, value, series] =
        reader.read_next_edge(n_nodes, n_cells);
    sum += left + right + node1 + node2 + code;
  }
  return sum;
}

double sum_of_field(const std::string& file, int n_cells, int columns) {
  utils::TextScanner scanner(file);
  double sum = 0.0;
  for (int k = 0; k < n_cells; ++k) {
    scanner.begin_record("cell", k, n_cells);
    for (int i = 0; i < columns; ++i) sum += scanner.read_number("value");
  }
  return sum;
}

/// The same with formatted extraction, after a header of some values.
template <class Value, class Sum = Value>
Sum sum_of_stream(const std::string& file, int header) {
  std::ifstream stream(file);
  int count;
  for (int i = 0; i < header; ++i) stream >> count;
  Sum sum = 0;
  for (Value value; stream >> value;) sum += value;
  return sum;
}

void compare_reading(const Channel& channel) {
  const int n_nodes = (channel.nx + 1) * (channel.ny + 1), n_cells = channel.cells();
  double all_megabytes = 0.0, all_our_time = 0.0, all_stream_time = 0.0;
  const auto row = [&](const char* what, const char* file, const auto& ours, const auto& streams) {
    decltype(ours()) sum = 0, sum_of_streams = 0;
    const double our_time = seconds_of([&] { sum = ours(); });
    const double stream_time = seconds_of([&] { sum_of_streams = streams(); });
    refuse(sum != sum_of_streams);
    print_row(what, megabytes_of(file), our_time, stream_time);
    all_megabytes += megabytes_of(file);
    all_our_time += our_time;
    all_stream_time += stream_time;
  };
  row(
      "read nodes", "nodes.txt", [] { return sum_of_nodes("nodes.txt"); },
      [] { return sum_of_stream<double>("nodes.txt", 1); });
  row(
      "read cells", "cells.txt", [&] { return sum_of_cells("cells.txt", n_nodes); },
      [] { return sum_of_stream<int, std::int64_t>("cells.txt", 1); });
  row(
      "read edges", "edges.txt", [&] { return sum_of_edges("edges.txt", n_nodes, n_cells); },
      [] { return sum_of_stream<int, std::int64_t>("edges.txt", 1); });
  row(
      "read friction", "friction.txt", [&] { return sum_of_field("friction.txt", n_cells, 1); },
      [] { return sum_of_stream<double>("friction.txt", 0); });
  row(
      "read states", "states.txt", [&] { return sum_of_field("states.txt", n_cells, 3); },
      [] { return sum_of_stream<double>("states.txt", 0); });
  print_row("read all of them", all_megabytes, all_our_time, all_stream_time);
}

// --- Writing ----------------------------------------------------------------------------------

struct State {
  MeshNode center;
  double h, qx, qy;
};

/// States of a flow, with centres in projected coordinates.
std::vector<State> states_of(int n_cells) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> place(0.0, 5000.0), depth(0.0, 2.0), discharge(-1.0, 1.0);
  std::vector<State> states(static_cast<std::size_t>(n_cells));
  for (State& s : states) {
    const MeshNode center(2.5e5 + place(random), 5.6e6 + place(random), 10.0 * depth(random));
    s = {center, depth(random), discharge(random), discharge(random)};
  }
  return states;
}

void write_table(const std::string& name, const std::vector<State>& states, bool is_snapshot) {
  utils::CellTable table(name, "");
  for (const State& s : states) {
    const double values[] = {s.h, s.qx, s.qy};
    const std::size_t columns = is_snapshot ? 3 : 1;
    table.add_row(s.center.x, s.center.y, s.center.z, {values, columns});
  }
  table.commit();
}

void write_stream(const std::string& name, const std::vector<State>& states, bool is_snapshot) {
  std::ofstream out(name);
  for (const State& s : states) {
    if (std::log10(std::fabs(s.center.x)) >= 3.0) out << std::fixed << std::setprecision(3);
    out << s.center;
    out << std::defaultfloat << std::setprecision(6) << s.h;
    if (is_snapshot) out << '\t' << s.qx << '\t' << s.qy;
    out << '\n';
  }
}

std::string text_of(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void compare_writing(int n_cells) {
  const std::vector<State> states = states_of(n_cells);
  for (const bool is_snapshot : {true, false}) {
    const double ours = seconds_of([&] { write_table("ours.txt", states, is_snapshot); });
    const double streams = seconds_of([&] { write_stream("streams.txt", states, is_snapshot); });
    refuse(text_of("ours.txt") != text_of("streams.txt"));
    print_row(is_snapshot ? "write snapshot" : "write envelope", megabytes_of("ours.txt"), ours,
              streams);
  }
}

/// A snapshot in single precision, until it lies on the disk.
void time_snapshot_in_netcdf(int n_cells) {
  using fields::Field;
  fields::Columns columns;
  for (const State& s : states_of(n_cells)) {
    columns[Field::depth].push_back(s.h);
    columns[Field::discharge_x].push_back(s.qx);
    columns[Field::discharge_y].push_back(s.qy);
  }
  const std::vector<double> bed(columns[Field::depth].size(), 10.0);
  const ugrid::UgridLayout layout({.title = "",
                                   .crs = {},
                                   .epoch = "2026-05-01 00:00:00",
                                   .n_nodes = 3,
                                   .n_faces = bed.size(),
                                   .width = 3,
                                   .has_sediments = false,
                                   .has_infiltration = false,
                                   .has_maxima_of_flow = false,
                                   .has_largest_depths = false,
                                   .is_double = false});
  const ugrid::ClassicLayout bytes = ugrid::classic_layout(layout.definitions());
  utils::WritableFile file;
  refuse(file.create_anew("snapshots.nc") != 0);
  ugrid::ClassicFile classic(file, bytes);
  classic.begin();
  std::size_t records = 0;
  const double seconds = seconds_of([&] {
    layout.put_snapshot(classic, records++, 0.0, {columns, bed, 0.001});
    classic.show(records);
  });
  refuse(classic.error() != 0);
  std::printf("\nA snapshot in NetCDF: %.1f MB, %.0f ms\n",
              1e-6 * static_cast<double>(bytes.record_size), 1e3 * seconds);
}

// --- Point location ---------------------------------------------------------------------------

void time_point_location(const Channel& channel) {
  constexpr int points = 10000;
  std::ostringstream log, out;
  utils::Console console(out);
  const Domain domain("data.json", {log, console});
  std::mt19937 random(2);
  std::uniform_real_distribution<double> x(0.0, channel.nx), y(0.0, channel.ny);
  int found = 0;
  const auto start = Clock::now();
  for (int i = 0; i < points; ++i) {
    const double px = x(random);
    if (domain.CellWithPoint(px, y(random)) >= 0) ++found;
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  refuse(found < points - 10);
  std::printf("\nPoint location: %d points in %d cells in %.3f s\n", points, channel.cells(),
              seconds);
}

}  // namespace

int main(int argc, char** argv) {
  const int wanted = argc == 2 ? std::atoi(argv[1]) : 0;
  if (wanted < 100) {
    std::cerr << "usage: bench_files CELLS, at least 100\n";
    return 2;
  }
  const Channel channel = channel_of(wanted);
  std::string folder = (std::filesystem::temp_directory_path() / "quillmere_bench_XXXXXX").string();
  std::filesystem::current_path(mkdtemp(folder.data()));
  write_channel_case(channel, ChannelKind::wet, "LHLLC", folder, 1.0);
  {
    std::ofstream file("states.txt");
    for (const State& s : states_of(channel.cells())) {
      file << s.h << ' ' << s.qx << ' ' << s.qy << '\n';
    }
  }
  std::printf("%-22s %10s %12s %12s %10s\n", "file", "MB", "MB/s", "stream MB/s", "ratio");
  compare_reading(channel);
  compare_writing(channel.cells());
  time_snapshot_in_netcdf(channel.cells());
  time_point_location(channel);
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
  return 0;
}
