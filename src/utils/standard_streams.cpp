#include "utils/standard_streams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <string>
#include <system_error>

#include "utils/stop.hpp"

namespace utils {

void open_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
    // open() takes the lowest descriptor that is free, which is that of the stream.
    if (open("/dev/null", O_RDWR) != stream) {
      fatal("Error. A standard stream is closed, and /dev/null couldn't be opened for it.\n");
    }
  }
}

void flush_console() {
  static bool is_lost = false;
  errno = 0;
  std::cout.flush();
  if (std::cout.good() || is_lost) return;
  is_lost = true;
  const std::string reason = errno != 0 ? std::generic_category().message(errno) : "unknown reason";
  warn("nothing more can be written to standard output: " + reason + ".");
}

}  // namespace utils
