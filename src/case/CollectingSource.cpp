#include "case/CollectingSource.hpp"

#include <limits>

#include "utils/stop.hpp"

namespace cases {

CollectingSource::CollectingSource(const std::string& name, Diagnostics& diagnostics)
    : diagnostics_(diagnostics), name_(name) {
  try {
    scanner_.emplace(name);
  } catch (const utils::FatalError& error) {
    ++refusals_;
    diagnostics_.error(error.what());
  }
}

void CollectingSource::refused(const std::string& message) {
  constexpr int most_refusals = 10;
  ++refusals_;
  last_is_well_ = false;
  diagnostics_.error(message);
  if (message.find("found the end of the file") != std::string::npos) {
    give_up();
  } else if (refusals_ == most_refusals) {
    diagnostics_.error(name_ + ": the rest of the file is not read");
    give_up();
  }
}

template <class T, class Read>
T CollectingSource::take(T otherwise, Read read) {
  if (!scanner_) return otherwise;
  last_is_well_ = true;
  try {
    return read(*scanner_);
  } catch (const utils::FatalError& error) {
    refused(error.what());
    return otherwise;
  }
}

void CollectingSource::begin_record(const char* kind, int index, int total) {
  refusals_before_record_ = refusals_;
  if (scanner_) scanner_->begin_record(kind, index, total);
}

double CollectingSource::read_number(const char* field) {
  return take(std::numeric_limits<double>::quiet_NaN(),
              [&](utils::TextScanner& file) { return file.read_number(field); });
}

int CollectingSource::read_integer(const char* field) {
  return take(-1, [&](utils::TextScanner& file) { return file.read_integer(field); });
}

int CollectingSource::read_index(const char* field, int limit) {
  return take(-1, [&](utils::TextScanner& file) { return file.read_index(field, limit); });
}

std::string CollectingSource::read_word(const char* field) {
  return take(std::string(), [&](utils::TextScanner& file) { return file.read_word(field); });
}

int CollectingSource::read_count(const char* field, std::size_t tokens_per_record) {
  const int count =
      take(0, [&](utils::TextScanner& file) { return file.read_count(field, tokens_per_record); });
  require_last();
  return count;
}

void CollectingSource::require_count(int value, const char* field, std::size_t tokens_per_record) {
  if (!last_is_well_) return;
  take(0, [&](utils::TextScanner& file) {
    file.require_count(value, field, tokens_per_record);
    return value;
  });
  require_last();
}

void CollectingSource::require_last() {
  if (!last_is_well_) give_up();
}

void CollectingSource::refuse(const char* field, const std::string& expected) {
  if (!last_is_well_) return;
  take(0, [&](utils::TextScanner& file) -> int { file.refuse(field, expected); });
}

}  // namespace cases
