// What a death test needs to look at the standard output of its process.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace support {

/// Inside the statement of a death test: from here on its matcher sees what goes to standard
/// output, and nothing of what goes to standard error.
inline void match_standard_output() {
  dup2(STDERR_FILENO, STDOUT_FILENO);
  dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
}

}  // namespace support
