#include "utils/OutputFile.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <set>
#include <system_error>

#include "globals/WriterHandoff.hpp"
#include "utils/files.hpp"
#include "utils/stop.hpp"

namespace utils {

namespace {

/// Whether this is the first trouble with the file: the envelope alone may be written thousands of
/// times.
bool is_first_trouble(const std::string& name) {
  static std::mutex mutex;
  static std::set<std::string> known;
  const std::lock_guard lock(mutex);
  return known.insert(name).second;
}

void warn_once(const std::string& name, const std::string& trouble) {
  if (is_first_trouble(name)) warn("The file " + name + " " + trouble);
}

/// Says why a file is not complete, and lets the run end; `error` is an error number.
void fail(const std::string& name, int error) {
  const std::string reason = error != 0 ? std::generic_category().message(error) : "unknown reason";
  if (is_first_trouble(name)) {
    std::cerr << "Error. The file " + name + " couldn't be written completely: " + reason + ".\n";
  }
  Thread::has_failed = true;
}

bool is_out_of_space(int error) { return error == ENOSPC || error == EDQUOT; }

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
    if (!stream_.is_open() && is_out_of_space(errno)) {
      // An earlier file stays: it is not emptied for one that cannot be written.
      fail(name_, errno);
      return;
    }
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
  put(buffer);
  buffer.clear();
}

void WholeFile::put(const TextBuffer& text) {
  if (!stream_.good()) return;
  errno = 0;
  stream_ << text.text() << std::flush;
  if (!stream_.good()) error_ = errno;
}

void WholeFile::commit(const TextBuffer& rest) {
  if (!stream_.is_open()) return;
  put(rest);
  errno = 0;
  stream_.close();
  const bool complete = stream_.good();
  if (!complete) fail(name_, error_ != 0 ? error_ : errno);
  if (temporary_name_.empty()) return;
  if (!complete) {
    std::remove(temporary_name_.c_str());
  } else if (std::rename(temporary_name_.c_str(), name_.c_str()) != 0) {
    warn_once(name_, "couldn't be put in its place: see " + temporary_name_ + ".");
  }
}

void LineFile::open(const std::string& name) {
  if (is_input_file(name)) {
    fatal("Error. The result file " + name + " would replace an input file of this run.\n");
  }
  name_ = name;
  stream_.open(name, std::ios::binary);
  is_created_ = stream_.is_open();
  if (!is_created_) warn_once(name_, "couldn't be created.");
}

void LineFile::write(const TextBuffer& line) {
  if (!stream_.is_open()) return;
  errno = 0;
  stream_ << line.text() << std::flush;
  if (stream_.good()) {
    size_ += line.text().size();
    return;
  }
  fail(name_, errno);
  stream_.close();
  cut_off_unfinished_line();
}

void LineFile::cut_off_unfinished_line() const {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(name_, ignored)) {
    std::filesystem::resize_file(name_, size_, ignored);
  }
}

}  // namespace utils
