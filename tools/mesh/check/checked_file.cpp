#include "mesh/check/checked_file.hpp"

#include <limits>

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

void CheckedFile::refused(const std::string& message) {
  constexpr int most_refusals = 10;
  ++refusals_;
  last_is_well_ = false;
  findings_.error("malformed value", finding_text(message));
  if (contains(message, "found the end of the file")) {
    give_up();
  } else if (refusals_ == most_refusals) {
    findings_.error("malformed value", name_ + ": the rest of the file is not read");
    give_up();
  }
}

template <class T, class Read>
T CheckedFile::take(T otherwise, Read read) {
  if (!scanner_) return otherwise;
  last_is_well_ = true;
  try {
    return read(*scanner_);
  } catch (const utils::FatalError& error) {
    refused(error.what());
    return otherwise;
  }
}

void CheckedFile::begin_record(const char* kind, int index, int total) {
  refusals_before_record_ = refusals_;
  if (scanner_) scanner_->begin_record(kind, index, total);
}

double CheckedFile::read_number(const char* field) {
  return take(std::numeric_limits<double>::quiet_NaN(),
              [&](utils::TextScanner& file) { return file.read_number(field); });
}

int CheckedFile::read_integer(const char* field) {
  return take(-1, [&](utils::TextScanner& file) { return file.read_integer(field); });
}

int CheckedFile::read_index(const char* field, int limit) {
  return take(-1, [&](utils::TextScanner& file) { return file.read_index(field, limit); });
}

std::string CheckedFile::read_word(const char* field) {
  return take(std::string(), [&](utils::TextScanner& file) { return file.read_word(field); });
}

int CheckedFile::read_count(const char* field, std::size_t tokens_per_record) {
  const int count =
      take(0, [&](utils::TextScanner& file) { return file.read_count(field, tokens_per_record); });
  require_last();
  return count;
}

void CheckedFile::require_count(int value, const char* field, std::size_t tokens_per_record) {
  if (!last_is_well_) return;
  take(0, [&](utils::TextScanner& file) {
    file.require_count(value, field, tokens_per_record);
    return value;
  });
  require_last();
}

void CheckedFile::require_last() {
  if (!last_is_well_) give_up();
}

void CheckedFile::refuse(const char* field, const std::string& expected) {
  if (!last_is_well_) return;
  take(0, [&](utils::TextScanner& file) -> int { file.refuse(field, expected); });
}

}  // namespace tools::check
