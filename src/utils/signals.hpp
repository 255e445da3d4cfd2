// Interruption of a run from outside: Ctrl-C (SIGINT), or the wish of a system or a user that the
// program ends (SIGTERM).
#pragma once

namespace utils {

/// From now on the first of these signals is only noted, and a second one ends the process at once,
/// as the first does before this call. A signal that the process was started to ignore stays
/// ignored.
void listen_for_interruption();

/// The signal that was noted; 0 as long as there is none.
int interrupting_signal();

}  // namespace utils
