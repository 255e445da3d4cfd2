// What the steps take on a device, on a generated mesh: device_memory CELLS. Prints a line for each
// model: its name, cells of a patch, KB of scratch, and bytes of the columns that a step of all
// cells reads and writes per cell, each once for every patch that needs it.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "case/EndAtFirstError.hpp"
#include "case/read_case.hpp"
#include "channel_case.hpp"
#include "engine/Engine.hpp"
#include "engine/device/PatchKernels.hpp"

namespace {

using engine::Engine;
using engine::Tables;
using namespace engine::device;

struct Model {
  const char* name;
  ChannelKind kind;
  const char* scheme;
};

/// Of the kernels of LHLLC: state read and written; bed, largest depth, highest vertex, area,
/// length and roughness, or with sediments hs, the bed load and its derivative read and written,
/// and the rock; slots; edges, of which cut ones are read as they stand and write three or four
/// slots on both sides, which the patches read.
double bytes_of_lhllc(const Tables& tables) {
  const double own = tables.has_bed ? 2 * 7 * 8 + 2 * 8 + 5 * 8 + 6 : 2 * 3 * 8 + 6 * 8 + 6;
  const double slot = tables.has_bed ? 32 : 24;
  const double side = tables.has_bed ? 8 * 8 : 4 * 8;
  const auto edges = static_cast<double>(tables.patches.edges.left.size());
  const auto cut = static_cast<double>(tables.patches.cut_edges.left.size());
  return own + (28 * edges + cut * (32 + 2 * side + 4 * slot)) / tables.owned;
}

/// Of those of HLL1 and HLL2: the water of all cells that a patch sees; geometry, and in second
/// order weights and neighbours, of those with states; edges; then the cells themselves.
double bytes_of_hll(const Tables& tables) {
  const engine::HllTables& hll = *tables.hll;
  const double water = (tables.has_bed ? 6 : 5) * 8;
  const double state = 8 * hll.numbers() + (hll.second_order ? 6 * 4 + 3 * 2 : 0);
  const double own = 3 * 8 + 5 * 8 + 6 + (tables.has_bed ? 5 * 8 : 0);
  double bytes = 0.0;
  for (const engine::HllPatch& patch : hll.patches) {
    const auto around = static_cast<double>(patch.around.size());
    bytes += water * (patch.cells + around) + 4 * around + state * patch.with_states +
             28 * patch.right_slots() + own * patch.cells;
  }
  return bytes / tables.owned;
}

void print(const Model& model, const Channel& channel) {
  const std::string folder =
      (std::filesystem::temp_directory_path() / ("quillmere_device_" + std::to_string(getpid())))
          .string();
  std::filesystem::create_directory(folder);
  write_channel_case(channel, model.kind, model.scheme, folder, 1.0);
  std::filesystem::current_path(folder);
  std::ostringstream nowhere;
  utils::Console console(nowhere);
  cases::EndAtFirstError diagnostics;
  const cases::Case contents =
      cases::read_case("data.json", {nowhere, console}, diagnostics).contents;
  const Engine engine(contents, 1, 0, {.device = engine::Device::emulated});
  const Tables& tables = engine.tables();
  std::printf("%s;%d;%.1f;%.0f\n", model.name, tables.cells_per_patch(),
              PatchKernels(tables).scratch_words(false, tables.has_bed && !tables.hll) * 8 / 1024.0,
              tables.hll ? bytes_of_hll(tables) : bytes_of_lhllc(tables));
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
}

}  // namespace

int main(int argc, char** argv) {
  const int cells = argc == 2 ? std::atoi(argv[1]) : 0;
  if (cells < 100) {
    std::cerr << "usage: device_memory CELLS, at least 100\n";
    return 2;
  }
  constexpr Model models[] = {{"LHLLC", ChannelKind::wet, "LHLLC"},
                              {"LHLLC, sediment", ChannelKind::sediment, "LHLLC"},
                              {"HLL1", ChannelKind::wet, "HLL1"},
                              {"HLL1, sediment", ChannelKind::sediment, "HLL1"},
                              {"HLL2", ChannelKind::wet, "HLL2"}};
  for (const Model& model : models) print(model, channel_of(cells));
  return 0;
}
