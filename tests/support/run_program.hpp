// Runs the simulator, or a program beside it, as a user does: in a folder, with arguments and
// standard input.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"

namespace support {

/// Builds with a sanitizer, which map terabytes, ignore limits of memory.
#ifdef QUILLMERE_SANITIZED
inline constexpr bool memory_can_be_limited = false;
#else
inline constexpr bool memory_can_be_limited = true;
#endif

struct RunOptions {
  std::string program = QUILLMERE_PROGRAM;  ///< the simulator, or a program beside it
  std::string input = {};                   ///< text on standard input
  std::size_t address_space = 0;  ///< bytes of memory the run may map, where it can be limited; 0:
                                  ///< no limit
  std::map<int, std::size_t> limits = {};  ///< further ones, by the number of a resource
  double time_limit = 120.0;               ///< s; a run that takes longer is killed
  int out = -1;                  ///< file for standard output; -1: it is kept for the result
  int err = -1;                  ///< the same for standard error
  std::vector<int> closed = {};  ///< standard streams that the run has to do without
};

struct RunResult {
  int status = -1;         ///< exit status; -1 if a signal ended the run
  int signal = 0;          ///< the signal that ended the run; 0 for an exit
  bool timed_out = false;  ///< whether the time limit was reached
  std::string out;
  std::string err;
};

/// A run under way.
class RunningProgram {
 public:
  RunningProgram(const std::string& folder, const std::vector<std::string>& arguments,
                 const RunOptions& options = {});
  /// Kills the run if nobody waited for it.
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  void send(int signal);
  /// Ends the run at once, as the loss of the machine would.
  void kill();
  bool is_running();
  RunResult wait();

 private:
  pid_t process_ = -1;
  double time_limit_;
  int out_;
  int err_;
};

/// Runs to the end.
RunResult run_program(const std::string& folder, const std::vector<std::string>& arguments,
                      const RunOptions& options = {});
/// Runs data.json of the folder without an echo on the console.
RunResult run_case(const TemporaryFolder& folder, const RunOptions& options = {});

}  // namespace support
