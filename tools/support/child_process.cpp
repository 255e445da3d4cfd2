#include "support/child_process.hpp"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <iostream>

#include "support/Error.hpp"

namespace tools {

pid_t fork_child(const std::string& purpose) {
  std::cout << std::flush;  // or else the child may write the same text once more
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) {
    throw Error("no process can be started " + purpose + ": " + std::strerror(errno) + ".");
  }
  if (child > 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);  // it has ended already
  std::signal(SIGINT, SIG_IGN);
  return 0;
}

std::string read_all(int descriptor) {
  std::string text;
  char buffer[4096];
  for (ssize_t n = 0; (n = ::read(descriptor, buffer, sizeof buffer)) > 0;) {
    text.append(buffer, static_cast<std::size_t>(n));
  }
  return text;
}

std::optional<std::string> try_apart(const std::string& purpose,
                                     const std::function<void()>& action) {
  int ends[2];
  if (pipe(ends) != 0) throw Error("no pipe can be made " + purpose + ".");
  const pid_t child = fork_child(purpose);
  if (child == 0) {
    const int nothing = open("/dev/null", O_WRONLY);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    try {
      action();
    } catch (const std::exception& error) {
      const std::string message = error.what();
      const bool is_said = write(ends[1], message.data(), message.size()) >= 0;
      _exit(is_said ? 0 : 1);
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  close(ends[1]);
  const std::string message = read_all(ends[0]);
  close(ends[0]);
  if (wait_for(child) != 0) return std::nullopt;
  return message;
}

int wait_for(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return status;
}

}  // namespace tools
