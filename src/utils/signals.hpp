// Signals: interruption of a run from outside, by Ctrl-C (SIGINT), by the wish of a system or a
// user that the program ends (SIGTERM), or by a terminal that is closed (SIGHUP); and those that a
// write may raise.
#pragma once

namespace utils {

/// From now on a signal of interruption ends the process as it would without this call, but not
/// while a line of a result file is being written: then right after it. One that comes while
/// another waits for that does not wait. A signal that the process was started to ignore stays
/// ignored.
void end_between_lines();

/// The same, and the first of these signals is only noted.
void listen_for_interruption();

/// The signal that was noted; 0 as long as there is none.
int interrupting_signal();

/// From now on SIGUSR1 is noted, as a wish for a checkpoint, and does not end the process.
void listen_for_checkpoint_wishes();

/// Whether such a wish was noted since this was asked last.
bool take_checkpoint_wish();

/// From now on a write into a pipe that nobody reads, or beyond the largest size of a file that the
/// process may write, fails like any other, instead of ending the process without a word.
void let_writes_fail();

/// Ends the process with the status, without destructors and flushes, and not while a line of a
/// result file is being written. Allocates nothing.
[[noreturn]] void exit_between_lines(int status);

/// As long as it lives, a line of a result file is being written. Nothing may be allocated then.
class LineUnderWay {
 public:
  LineUnderWay();
  ~LineUnderWay();
  LineUnderWay(const LineUnderWay&) = delete;
  LineUnderWay& operator=(const LineUnderWay&) = delete;
};

}  // namespace utils
