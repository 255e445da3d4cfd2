// Keeps checkpoints of a run: when one is due, and into which of the two files it goes. The loop of
// the run fills the checkpoint; a thread of its own writes it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "checkpoint/checkpoint_file.hpp"
#include "fields/Rows.hpp"
#include "utils/WriterThread.hpp"

namespace checkpoint {

struct Request {
  std::string name;
  double interval = 1800.0;           ///< of the clock on the wall, s
  std::function<bool()> is_wished{};  ///< asked between steps; empty: by nobody
};

class CheckpointKeeper {
 public:
  /// Throws std::runtime_error, with a message for the user, where no checkpoint of that name can
  /// be written, or one would replace a file that is none.
  explicit CheckpointKeeper(const Request& request);

  /// Whether one is wished or due, and can be taken without waiting for the last one.
  bool is_due();
  /// To be filled, once the last one is written.
  Checkpoint& contents();
  /// Hands what was filled to the writer, with the rows that were gathered, which must stay as they
  /// are until the last one is written. `results_are_written` is asked by its thread, and tells
  /// whether all results from before the checkpoint lie on the disk.
  void write(fields::SavedRows& rows, std::function<bool()> results_are_written);
  /// Waits until the last one is written.
  void finish() { writer_.wait(); }

 private:
  using Clock = std::chrono::steady_clock;

  Clock::duration interval() const;
  /// The head of the file and the rows of this process, and then those of others as they come.
  utils::WriterThread::Pieces pieces(fields::SavedRows& rows,
                                     std::function<bool()> results_are_written);
  void begin_file(const fields::SavedRows& rows);
  void finish_file(const std::function<bool()>& results_are_written);
  /// Of the file that is being written.
  void give_up(const std::string& trouble);
  void tell_trouble(const std::string& trouble) const;

  Request request_;
  Clock::time_point next_;
  bool is_wished_ = false;
  std::size_t target_ = 0;         ///< the file to be written next
  std::uint64_t last_number_ = 0;  ///< in the row
  Checkpoint contents_;
  std::optional<FileWriter> file_;  ///< that is being written
  utils::WriterThread writer_;      ///< uses all that stands above
};

}  // namespace checkpoint
