// A checkpoint with something in every part.
#pragma once

#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "checkpoint/checkpoint_file.hpp"
#include "fields/Rows.hpp"
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
  kept.flow.cells = cells;
  kept.flow.columns = {0, 1, 18};
  kept.flow.rain_clocks = {{1.0, 2, 3.0}};
  return kept;
}

inline bool are_the_same(const checkpoint::Checkpoint& a, const checkpoint::Checkpoint& b) {
  utils::Bytes of_a, of_b;
  utils::put_into(of_a, a);
  utils::put_into(of_b, b);
  return of_a == of_b;
}

/// Of all that was put: what went wrong, or nothing.
inline std::string write_checkpoint(
    const std::string& name, std::uint64_t number, const checkpoint::Checkpoint& kept,
    const std::function<bool()>& may_count = [] { return true; }) {
  checkpoint::FileWriter file(name, number, kept);
  const std::vector<double> rows(kept.flow.cells * kept.flow.columns.size(), 0.5);
  file.put(rows.data(), rows.size() * sizeof(double));
  return file.finish(may_count);
}

inline std::string text_of_checkpoint(const TemporaryFolder& folder,
                                      const checkpoint::Checkpoint& kept, std::uint64_t number) {
  return write_checkpoint(folder.file("text"), number, kept).empty() ? folder.read("text") : "";
}

/// Its rows, of which others have some that come in pieces.
class SomeRows final : public fields::SavedRows {
 public:
  explicit SomeRows(std::size_t pieces_of_others = 0) : pieces_(pieces_of_others) {
    flow_ = some_checkpoint().flow;
  }

  void gather(const fields::Books&) override { next_ = 0; }
  void put_own_to(utils::ByteSink& sink) const override {
    if (lacks_memory) throw std::bad_alloc();
    const std::string bytes = piece();
    sink.put(bytes.data(), bytes.size());
  }
  bool has_others() const override { return pieces_ > 0; }
  /// Every second question comes too early.
  std::optional<fields::RowText> next() override {
    if (++asked_ % 2 == 1) return {};
    if (is_lost) throw std::runtime_error("their rank has no memory");
    ++next_;
    return fields::RowText{piece(), next_ == pieces_};
  }

  bool is_lost = false, lacks_memory = false;

 private:
  /// Of the pieces that come, each holds as much.
  std::string piece() const {
    const std::vector<double> values(flow_.cells * flow_.columns.size() / (pieces_ + 1), 0.5);
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(double)};
  }

  std::size_t pieces_, next_ = 0, asked_ = 0;
};

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
