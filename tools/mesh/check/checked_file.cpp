#include "mesh/check/checked_file.hpp"

#include "utils/stop.hpp"

namespace tools::check {

namespace {

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

std::string finding_text(std::string message) {
  for (const std::string opening : {"Error in file ", "Error. ", "Fatal error. "}) {
    if (message.rfind(opening, 0) == 0) message.erase(0, opening.size());
  }
  while (!message.empty() && (message.back() == '\n' || message.back() == '.')) message.pop_back();
  return message;
}

CheckedFile::CheckedFile(const std::string& name, const std::string& key, Findings& findings)
    : findings_(findings), name_(name) {
  try {
    scanner_.emplace(name);
  } catch (const utils::FatalError&) {
    ++refusals_;
    findings.error("unreadable file", "\"" + key + "\": the file " + name + " can't be opened");
  }
}

void CheckedFile::refused(std::string message) {
  constexpr int most_refusals = 10;
  ++refusals_;
  findings_.error("malformed value", finding_text(message));
  if (contains(message, "found the end of the file")) {
    scanner_.reset();
  } else if (refusals_ == most_refusals) {
    findings_.error("malformed value", name_ + ": the rest of the file is not read");
    scanner_.reset();
  }
}

}  // namespace tools::check
