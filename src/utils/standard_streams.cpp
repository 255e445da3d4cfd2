#include "utils/standard_streams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

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

}  // namespace utils
