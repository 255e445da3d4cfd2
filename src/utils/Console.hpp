// The console of a run: its clock, and its summary lines unless these are muted.
#pragma once

#include <ostream>
#include <string>

namespace utils {

class Console {
 public:
  explicit Console(std::ostream& out) : out_(out) {}

  /// From now on summary lines do not show.
  void mute() { is_muted_ = true; }
  /// Shows a summary line, which carries its own line end, at once.
  void show(const std::string& line);
  /// For what shows in any case.
  std::ostream& out() { return out_; }
  /// The first time that the console cannot be written to (a pipe that nobody reads, a full disk)
  /// is warned about; the run goes on without it.
  void flush();

 private:
  std::ostream& out_;
  bool is_muted_ = false;
  bool is_lost_ = false;
};

}  // namespace utils
