#include "utils/stop.hpp"

#include <iostream>
#include <utility>

namespace utils {

namespace {
std::string without_line_end(const std::string& text) {
  return text.substr(0, text.find_last_not_of('\n') + 1);
}
}  // namespace

FatalError::FatalError(const std::string& text, int status, const std::string& output)
    : std::runtime_error(without_line_end(text.empty() ? output : text)),
      text_(text),
      output_(output),
      status_(status) {}

void stop(int status) { throw FatalError("", status); }

void fatal(const std::string& message, int status, const std::string& output) {
  throw FatalError(message, status, output);
}

void warn(const std::string& message) { std::cerr << "Warning: " + message + "\n"; }

RepeatedWarning::RepeatedWarning(std::string kind, Sink sink)
    : kind_(std::move(kind)), sink_(std::move(sink)) {}

RepeatedWarning::~RepeatedWarning() {
  if (count_ > shown) sink_(std::to_string(count_ - shown) + " more " + kind_);
}

void RepeatedWarning::add(const std::string& message) {
  if (++count_ <= shown) sink_(message);
}

}  // namespace utils
