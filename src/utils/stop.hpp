// The ways a run ends early, and the warnings after which it goes on.
#pragma once

#include <stdexcept>
#include <string>

namespace utils {

/// Ends the process: lets the writers finish their files, closes the log, flushes the console.
/// Must be called on the main thread.
[[noreturn]] void stop(int status);

/// What stop() does last; at first it is std::exit. A program that goes on after a run that ended
/// early sets a handler that throws.
using StopHandler = void (*)(int status);
void set_stop_handler(StopHandler handler);

/// Writes a message (with its own line end) to standard error and ends the process with the status.
[[noreturn]] void fatal(const std::string& message, int status = -1);

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
  /// `kind` completes the closing line "Warning: N more " + kind.
  explicit RepeatedWarning(std::string kind);
  ~RepeatedWarning();
  RepeatedWarning(const RepeatedWarning&) = delete;
  RepeatedWarning& operator=(const RepeatedWarning&) = delete;

  void add(const std::string& message);

 private:
  std::string kind_;
  int count_ = 0;
};

}  // namespace utils
