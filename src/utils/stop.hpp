// The ways a run ends early, and the warnings after which it goes on.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace utils {

/// Ends the run after an error that has been told. Must be called on the main thread.
[[noreturn]] void stop(int status);

/// Ends the run after an error that the message tells, with its own line end.
[[noreturn]] void fatal(const std::string& message, int status = -1);

/// What stop() and fatal() do, with the message of fatal() or an empty one: at first end_process().
/// A handler does not return; a program that goes on after a run that ended early throws.
using StopHandler = std::function<void(int status, const std::string& message)>;
void set_stop_handler(StopHandler handler);

/// Writes the message to standard error, lets the writers finish their files, closes the log and
/// flushes the console.
void close_run(const std::string& message);
/// The same, and ends the process with the status.
[[noreturn]] void end_process(int status, const std::string& message);

/// What fatal() throws in a program that goes on after errors.
class FatalError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// From now on fatal() throws a FatalError with its message, less the line end, and neither writes
/// nor ends anything: for programs that collect errors, or that say them with a beginning of their
/// own.
void throw_fatal_errors();

/// Writes "Warning: ", the message and a line end to standard error. Any thread may call it.
void warn(const std::string& message);

/// Warnings of one kind, of which a file may hold thousands: the first ten are written, the rest
/// are counted.
class RepeatedWarning {
 public:
  using Sink = std::function<void(const std::string& message)>;

  /// `kind` completes the closing line "Warning: N more " + kind. The sink takes the lines.
  explicit RepeatedWarning(std::string kind, Sink sink = warn);
  ~RepeatedWarning();
  RepeatedWarning(const RepeatedWarning&) = delete;
  RepeatedWarning& operator=(const RepeatedWarning&) = delete;

  void add(const std::string& message);

 private:
  std::string kind_;
  Sink sink_;
  int count_ = 0;
};

}  // namespace utils
