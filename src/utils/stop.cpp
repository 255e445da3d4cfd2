#include "utils/stop.hpp"

#include <cstdlib>
#include <iostream>

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"

namespace utils {

namespace {
constexpr int shown_warnings = 10;

StopHandler stop_handler = std::exit;
bool fatal_errors_are_thrown = false;
}  // namespace

void set_stop_handler(StopHandler handler) { stop_handler = handler; }

void stop(int status) {
  std::cout.flush();
  Handoff::join_all();
  if (Globals::spyFile.is_open()) Globals::spyFile.close();
  stop_handler(status);
  std::abort();  // a handler does not return
}

void throw_fatal_errors() { fatal_errors_are_thrown = true; }

void fatal(const std::string& message, int status) {
  if (fatal_errors_are_thrown) {
    throw FatalError(message.substr(0, message.find_last_not_of('\n') + 1));
  }
  std::cerr << message;
  stop(status);
}

void warn(const std::string& message) { std::cerr << "Warning: " + message + "\n"; }

RepeatedWarning::RepeatedWarning(std::string kind) : kind_(std::move(kind)) {}

RepeatedWarning::~RepeatedWarning() {
  if (count_ > shown_warnings) warn(std::to_string(count_ - shown_warnings) + " more " + kind_);
}

void RepeatedWarning::add(const std::string& message) {
  if (++count_ <= shown_warnings) warn(message);
}

}  // namespace utils
