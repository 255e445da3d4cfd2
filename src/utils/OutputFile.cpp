#include "utils/OutputFile.hpp"

#include <cstdio>
#include <filesystem>
#include <mutex>
#include <set>

#include "utils/stop.hpp"

namespace utils {

namespace {

/// One warning per file: the envelope alone may be written thousands of times.
void warn_once(const std::string& name, const std::string& trouble) {
  static std::mutex mutex;
  static std::set<std::string> warned;
  const std::lock_guard lock(mutex);
  if (warned.insert(name).second) warn("The file " + name + " " + trouble);
}

bool can_be_replaced(const std::string& name) {
  std::error_code ignored;
  const auto status = std::filesystem::symlink_status(name, ignored);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

}  // namespace

WholeFile::WholeFile(std::string name) : name_(std::move(name)) {
  if (can_be_replaced(name_)) {
    temporary_name_ = name_ + ".part";
    stream_.open(temporary_name_, std::ios::binary);
  }
  if (!stream_.is_open()) {  // a device, a link, or a folder where no file can be added
    temporary_name_.clear();
    stream_.clear();
    stream_.open(name_, std::ios::binary);
  }
  if (!stream_.is_open()) warn_once(name_, "couldn't be created: its results are lost.");
}

void WholeFile::drain(TextBuffer& buffer) {
  constexpr std::size_t large = 1 << 20;
  if (buffer.text().size() < large) return;
  stream_ << buffer.text();
  buffer.clear();
}

void WholeFile::commit(const TextBuffer& rest) {
  if (!stream_.is_open()) return;
  stream_ << rest.text();
  stream_.close();
  const bool complete = stream_.good();
  if (!complete) warn_once(name_, "couldn't be written completely (is the disk full?).");
  if (temporary_name_.empty()) return;
  if (!complete) {
    std::remove(temporary_name_.c_str());
  } else if (std::rename(temporary_name_.c_str(), name_.c_str()) != 0) {
    warn_once(name_, "couldn't be put in its place: see " + temporary_name_ + ".");
  }
}

void LineFile::open(const std::string& name) {
  name_ = name;
  stream_.open(name, std::ios::binary);
  if (!stream_.is_open()) warn_once(name_, "couldn't be created.");
}

void LineFile::write(const TextBuffer& line) {
  if (!stream_.is_open()) return;
  stream_ << line.text() << std::flush;
  if (!stream_.good()) warn_once(name_, "couldn't be written completely (is the disk full?).");
}

}  // namespace utils
