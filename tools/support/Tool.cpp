#include "support/Tool.hpp"

#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>

#include "utils/signals.hpp"
#include "utils/standard_streams.hpp"

namespace tools {

namespace {

constexpr int status_error = 1;
constexpr int status_wrong_usage = 2;

}  // namespace

Tool::Tool(const char* name, const char* summary, const char* examples)
    : app_(std::string("Examples:\n") + examples + "\n" + summary, name) {
  app_.set_version_flag("--version", std::string(name) + " " + QUILLMERE_VERSION);
  app_.require_subcommand(1);
  utils::open_standard_streams();
  utils::let_writes_fail();
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
