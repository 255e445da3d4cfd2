// A checkpoint with something in every part.
#pragma once

#include <sstream>

#include "checkpoint/checkpoint_file.hpp"
#include "support/TemporaryFolder.hpp"

namespace support {

inline checkpoint::Checkpoint some_checkpoint(std::size_t cells = 20) {
  checkpoint::Checkpoint kept;
  kept.inputs = {{"the mesh", 7, false}, {"the end", 8, true}};
  kept.rain = {{3, 11}};
  kept.clock = {1.5, 0.25, 6};
  kept.outputs.done = 1.25;
  kept.outputs.gauges = RecordingPosition{{"gauges.txt", 12, 34}, 0.5, 1.5, 56};
  kept.outputs.snapshots = SnapshotPosition{{0.0, 1.0, 2.0}, 2};
  kept.outputs.results = ResultsPosition{"results.nc", {{0.0, 1.0}, 1}, 1, {1, 78}};
  kept.looks.assign(33, std::byte{5});
  kept.report.assign(9, std::byte{6});
  kept.flow.h.assign(cells, 1.0);
  kept.flow.qx.assign(cells, -0.5);
  kept.flow.rain_clocks = {{1.0, 2, 3.0}};
  kept.notes.lifted = {0.0, 0.125};
  return kept;
}

inline bool are_the_same(const checkpoint::Checkpoint& a, const checkpoint::Checkpoint& b) {
  utils::Bytes of_a, of_b;
  utils::put_into(of_a, a);
  utils::put_into(of_b, b);
  return of_a == of_b;
}

inline std::string text_of_checkpoint(const TemporaryFolder& folder,
                                      const checkpoint::Checkpoint& kept, std::uint64_t number) {
  if (!checkpoint::write_file(folder.file("text"), number, kept, [] { return true; }).empty()) {
    return "";
  }
  return folder.read("text");
}

/// Why a text is no whole checkpoint; empty if it is one.
inline std::string trouble_with(const std::string& text) {
  std::istringstream stream(text);
  try {
    checkpoint::read_file(stream);
  } catch (const checkpoint::BadFile& bad) {
    return bad.what();
  }
  return "";
}

}  // namespace support
