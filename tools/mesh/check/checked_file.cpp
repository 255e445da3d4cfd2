#include "mesh/check/checked_file.hpp"

namespace tools::check {

std::string finding_text(std::string message) {
  for (const std::string opening : {"Error in file ", "Error. ", "Fatal error. "}) {
    if (message.rfind(opening, 0) == 0) message.erase(0, opening.size());
  }
  while (!message.empty() && (message.back() == '\n' || message.back() == '.')) message.pop_back();
  return message;
}

void FileFindings::error(const std::string& message) {
  if (is_open_) {
    findings_.error("malformed value", finding_text(message));
  } else {
    findings_.error("unreadable file", "\"" + key_ + "\": the file " + name_ + " can't be opened");
  }
}

}  // namespace tools::check
