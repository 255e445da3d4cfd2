// The ways a run ends early, and the warnings after which it goes on.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace utils {

/// Ends a run early: what is said on standard error and, for a few errors, on standard output, with
/// line ends (empty: nothing more), and the exit status.
class FatalError : public std::runtime_error {
 public:
  /// what() is the text, or else the output, without its line end.
  explicit FatalError(const std::string& text, int status = -1, const std::string& output = "");

  const std::string& text() const { return text_; }
  const std::string& output() const { return output_; }
  int status() const { return status_; }

 private:
  std::string text_, output_;
  int status_;
};

/// Throws a FatalError after an error that has been told.
[[noreturn]] void stop(int status);

/// Throws a FatalError that the message tells, with its own line end.
[[noreturn]] void fatal(const std::string& message, int status = -1,
                        const std::string& output = "");

/// Writes "Warning: ", the message and a line end to standard error. Any thread may call it.
void warn(const std::string& message);

/// Warnings of one kind, of which a file may hold thousands: the first ten are written, the rest
/// are counted.
class RepeatedWarning {
 public:
  /// How many are written.
  static constexpr int shown = 10;

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
