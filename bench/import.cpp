// Times `quillmere-mesh import` on a generated mesh: bench_import CELLS PROGRAM. Prints one row of
// a table: triangles, size of the mesh file, time and peak memory.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "channel_case.hpp"

namespace {

/// The channel as Gmsh 2.2, ASCII, with inner nodes moved off the grid so that coordinates have all
/// their digits.
std::string mesh_text(const Channel& channel) {
  std::string text =
      "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$PhysicalNames\n1\n2 1 \"channel\"\n"
      "$EndPhysicalNames\n$Nodes\n";
  const auto add = [&text](auto... values) {
    ((text += std::to_string(values), text += ' '), ...);
    text += '\n';
  };
  const auto add_node = [&text](int number, double x, double y) {
    char line[100];
    text.append(line, static_cast<std::size_t>(
                          std::snprintf(line, sizeof line, "%d %.16g %.16g 0\n", number, x, y)));
  };
  const int columns = channel.nx + 1;
  add(columns * (channel.ny + 1));
  for (int j = 0; j <= channel.ny; ++j) {
    for (int i = 0; i < columns; ++i) {
      const bool is_inner = i > 0 && i < channel.nx && j > 0 && j < channel.ny;
      const double shift = is_inner ? 0.2 * std::sin(12.9898 * i + 78.233 * j) : 0.0;
      add_node(j * columns + i + 1, i + shift, j - shift);
    }
  }
  text += "$EndNodes\n$Elements\n";
  add(channel.cells());
  for (int j = 0, number = 0; j < channel.ny; ++j) {
    for (int i = 0; i < channel.nx; ++i) {
      const int sw = j * columns + i + 1, se = sw + 1, nw = sw + columns, ne = nw + 1;
      add(++number, 2, 2, 1, 1, sw, se, ne);
      add(++number, 2, 2, 1, 1, sw, ne, nw);
    }
  }
  return text + "$EndElements\n";
}

[[noreturn]] void become_import(const char* program) {
  const int nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, STDOUT_FILENO);
  execl(program, program, "import", "mesh.msh", "case", "--friction", "0.03", "--level",
        "channel=1", static_cast<char*>(nullptr));
  _exit(127);
}

}  // namespace

int main(int argc, char** argv) {
  const int wanted = argc == 3 ? std::atoi(argv[1]) : 0;
  if (wanted < 100) {
    std::fprintf(stderr, "usage: bench_import CELLS PROGRAM, at least 100 cells\n");
    return 2;
  }
  const std::string program = std::filesystem::absolute(argv[2]).string();
  std::string folder = (std::filesystem::temp_directory_path() / "quillmere_bench_XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return 1;
  std::filesystem::current_path(folder);
  const Channel channel = channel_of(wanted);
  const std::string text = mesh_text(channel);
  std::ofstream("mesh.msh") << text;

  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) become_import(program.c_str());
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  std::printf("%12d %14.1f %12.2f %16.1f\n", channel.cells(),
              static_cast<double>(text.size()) / 1e6, elapsed.count(),
              static_cast<double>(usage.ru_maxrss) / 1024.0);
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
  return status == 0 ? 0 : 1;
}
