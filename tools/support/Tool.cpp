#include "support/Tool.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>

#include "utils/stop.hpp"

namespace tools {

namespace {

constexpr int status_error = 1;
constexpr int status_wrong_usage = 2;

/// Whoever starts the program may have closed some of them; a file that is written must not become
/// one.
void open_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    [[maybe_unused]] const int opened = open("/dev/null", O_RDWR);  // the first one that is free
  }
}

}  // namespace

Tool::Tool(const char* name, const char* summary, const char* examples)
    : app_(std::string("Examples:\n") + examples + "\n" + summary, name) {
  app_.set_version_flag("--version", std::string(name) + " " + QUILLMERE_VERSION);
  app_.require_subcommand(1);
  utils::throw_fatal_errors();
  open_standard_streams();
  // What cannot be written is an error with a message, not a silent end.
  for (const int number : {SIGPIPE, SIGXFSZ}) std::signal(number, SIG_IGN);
}

int Tool::run(int argc, char** argv) {
  const int status = parse_and_run(argc, argv);
  errno = 0;
  if (std::cout.flush()) return status;
  std::cerr << app_.get_name() << ": standard output couldn't be written completely"
            << (errno != 0 ? std::string(": ") + std::strerror(errno) : "") << ".\n";
  return status_error;
}

int Tool::parse_and_run(int argc, char** argv) {
  try {
    app_.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app_.exit(error) == 0 ? 0 : status_wrong_usage;
  } catch (const std::exception& error) {
    std::cerr << app_.get_name() << ": " << error.what() << "\n";
    return status_error;
  }
  return 0;
}

}  // namespace tools
