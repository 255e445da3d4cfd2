// Standard input, output and error exist.
#pragma once

namespace utils {

/// Opens on /dev/null what the process was started without, so that no result file gets the place
/// of a standard stream, and messages do not land in it.
void open_standard_streams();

}  // namespace utils
