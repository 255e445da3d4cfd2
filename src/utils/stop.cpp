#include "utils/stop.hpp"

#include <cstdlib>
#include <iostream>
#include <utility>

#include "globals/Globals.hpp"
#include "utils/WriterThread.hpp"
#include "utils/standard_streams.hpp"

namespace utils {

namespace {
constexpr int shown_warnings = 10;

StopHandler stop_handler = end_process;

[[noreturn]] void end_run(int status, const std::string& message) {
  const StopHandler handler = stop_handler;  // which may set another one
  handler(status, message);
  std::abort();  // a handler does not return
}
}  // namespace

void set_stop_handler(StopHandler handler) { stop_handler = std::move(handler); }

void close_run(const std::string& message) {
  std::cerr << message;
  flush_console();
  wait_for_writers();
  if (Globals::spyFile.is_open()) Globals::spyFile.close();
}

void end_process(int status, const std::string& message) {
  close_run(message);
  std::exit(status);
}

void throw_fatal_errors() {
  set_stop_handler([](int status, const std::string& message) {
    if (message.empty()) end_process(status, message);
    throw FatalError(message.substr(0, message.find_last_not_of('\n') + 1));
  });
}

void stop(int status) { end_run(status, ""); }

void fatal(const std::string& message, int status) { end_run(status, message); }

void warn(const std::string& message) { std::cerr << "Warning: " + message + "\n"; }

RepeatedWarning::RepeatedWarning(std::string kind, Sink sink)
    : kind_(std::move(kind)), sink_(std::move(sink)) {}

RepeatedWarning::~RepeatedWarning() {
  if (count_ > shown_warnings) sink_(std::to_string(count_ - shown_warnings) + " more " + kind_);
}

void RepeatedWarning::add(const std::string& message) {
  if (++count_ <= shown_warnings) sink_(message);
}

}  // namespace utils
