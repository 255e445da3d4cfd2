// Standard input, output and error: they exist, and their failures are told.
#pragma once

namespace utils {

/// Opens on /dev/null what the process was started without, so that no result file gets the place
/// of a standard stream, and messages do not land in it.
void open_standard_streams();

/// Flushes the console. The first time that it cannot be written to (a pipe that nobody reads, a
/// full disk) is warned about; the run goes on without it.
void flush_console();

}  // namespace utils
