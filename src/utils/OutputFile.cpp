#include "utils/OutputFile.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <random>
#include <set>
#include <system_error>
#include <vector>

#include "utils/files.hpp"
#include "utils/signals.hpp"
#include "utils/stop.hpp"

namespace utils {

namespace {

/// Whether this is the first trouble with the file: the envelope may be written thousands of times,
/// and only the first failure is told.
bool is_first_trouble(const std::string& name) {
  static std::mutex mutex;
  static std::set<std::string> known;
  const std::lock_guard lock(mutex);
  return known.insert(name).second;
}

void warn_once(const std::string& name, const std::string& trouble) {
  if (is_first_trouble(name)) warn("The file " + name + " " + trouble);
}

std::string reason_of(int error) { return std::generic_category().message(error); }

/// Says why a file is not complete, or not in its place.
void say_failure(const std::string& name, const std::string& trouble) {
  if (is_first_trouble(name)) std::cerr << "Error. The file " + name + " " + trouble + ".\n";
}

/// `error` is an error number.
std::string incomplete(int error) { return "couldn't be written completely: " + reason_of(error); }

bool is_out_of_space(int error) { return error == ENOSPC || error == EDQUOT; }

/// The file that a link leads to; else the name itself.
std::string place_of(const std::string& name) {
  std::error_code ignored;
  const bool is_linked = std::filesystem::is_symlink(name, ignored);
  const std::filesystem::path target =
      is_linked ? std::filesystem::canonical(name, ignored) : std::filesystem::path();
  return target.empty() ? name : target.string();
}

bool can_be_replaced(const std::string& place) {
  std::error_code ignored;
  const auto status = std::filesystem::symlink_status(place, ignored);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

/// Whether an input file itself, not a link to one, has the name.
bool is_input_itself(const std::string& name) {
  std::error_code ignored;
  return !std::filesystem::is_symlink(name, ignored) && is_input_file(name);
}

/// Of as many bytes as the lines had.
Checksum checksum_of_start(const WrittenLines& lines) {
  Checksum sum;
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(lines.name, ignored)) return sum;
  std::ifstream file(lines.name, std::ios::binary);
  std::vector<char> piece(1 << 20);
  for (std::uint64_t left = lines.size; left > 0 && file;) {
    file.read(piece.data(),
              static_cast<std::streamsize>(std::min<std::uint64_t>(left, piece.size())));
    const auto count = static_cast<std::size_t>(file.gcount());
    sum.add(piece.data(), count);
    left -= count;
  }
  return sum;
}

/// No other file begins so.
std::string new_mark() {
  std::random_device source;
  std::string mark = "not written yet";
  for (int words = 0; words < 4; ++words) mark += ' ' + std::to_string(source());
  return mark + '\n';
}

}  // namespace

int open_shared(const SharedPart& part, WritableFile& file) {
  std::string mark(part.mark.size(), ' ');
  std::ifstream(part.name, std::ios::binary)
      .read(mark.data(), static_cast<std::streamsize>(mark.size()));
  if (const int error = file.open_as_it_is(part.name); error != 0) return error;
  if (mark == part.mark) return 0;
  file.close();
  return ENOENT;
}

WholeFile::WholeFile(std::string name) : name_(std::move(name)), place_(place_of(name_)) {
  if (is_input_file(place_) || is_input_itself(place_ + ".part")) {
    fail("isn't written: it, or its name with .part, is an input file of this run");
    return;
  }
  create();
}

void WholeFile::create() {
  if (can_be_replaced(place_)) {
    temporary_name_ = place_ + ".part";
    const int error = file_.create_anew(temporary_name_);
    if (is_out_of_space(error)) {
      // An earlier file stays: it is not emptied for one that cannot be written.
      fail(incomplete(error));
      return;
    }
  }
  if (!file_.is_open()) {  // a device, a pipe, or a folder where no file can be added
    temporary_name_.clear();
    file_.open(place_);
  }
  if (!file_.is_open()) warn_once(name_, "couldn't be created: its results are lost.");
}

void WholeFile::drain(TextBuffer& buffer) {
  constexpr std::size_t large = 1 << 20;
  if (buffer.text().size() < large) return;
  put(buffer);
  buffer.clear();
}

void WholeFile::put(const TextBuffer& text) {
  if (file_.is_open() && error_ == 0) error_ = file_.write(text.text());
}

bool WholeFile::commit(const TextBuffer& rest) {
  if (!file_.is_open()) return !has_failed_;
  put(rest);
  const int error_of_close = file_.close();
  if (error_ == 0) error_ = error_of_close;
  if (error_ != 0) fail(incomplete(error_));
  if (!temporary_name_.empty()) put_in_place();
  return !has_failed_;
}

std::optional<SharedPart> WholeFile::share() {
  if (!file_.is_open() || temporary_name_.empty()) return {};
  SharedPart part = {temporary_name_, new_mark()};
  error_ = file_.write_at(0, part.mark);
  if (error_ == 0) error_ = file_.sync();  // other machines see it
  if (error_ != 0) return {};
  return part;
}

void WholeFile::unshare() {
  if (error_ == 0) error_ = file_.cut_off(0);
}

bool WholeFile::commit_shared(std::uint64_t size, int error) {
  if (error_ == 0) error_ = error;
  if (error_ == 0) error_ = file_.cut_off(size);  // it may be shorter than its mark
  return commit({});
}

void WholeFile::put_in_place() {
  if (error_ != 0) {
    std::remove(temporary_name_.c_str());
  } else if (std::rename(temporary_name_.c_str(), place_.c_str()) != 0) {
    const std::string reason = reason_of(errno);
    fail("couldn't be put in its place: " + reason + "; it is complete as " + temporary_name_);
  }
}

void WholeFile::fail(const std::string& trouble) {
  say_failure(name_, trouble);
  has_failed_ = true;
}

void LineFile::open(const std::string& name) {
  if (is_input_file(name)) {
    fatal("Error. The result file " + name + " would replace an input file of this run.\n");
  }
  name_ = name;
  is_created_ = file_.open(name) == 0;
  is_regular_ = is_created_ && file_.is_regular();
  if (!is_created_) warn_once(name_, "couldn't be created.");
}

void LineFile::open_behind(const WrittenLines& lines) {
  name_ = lines.name;
  checksum_ = checksum_of_start(lines);
  size_ = lines.size;
  const int error = file_.open_behind(name_, size_);
  if (error != 0) {
    fatal("Error. The result file " + name_ + " couldn't be continued: " + reason_of(error) +
          ".\n");
  }
  is_created_ = true;
  is_regular_ = file_.is_regular();
}

bool LineFile::write(const TextBuffer& line) {
  if (!file_.is_open()) return true;
  int error = 0;
  {
    // A pipe may never be emptied: the end of the run does not wait for it.
    std::optional<LineUnderWay> line_under_way;
    if (is_regular_) line_under_way.emplace();
    error = file_.write(line.text());
    if (error != 0 && is_regular_) file_.cut_off(size_);
  }
  if (error == 0) {
    size_ += line.text().size();
    checksum_.add(line.text().data(), line.text().size());
    return true;
  }
  say_failure(name_, incomplete(error));
  file_.close();
  return false;
}

bool LineFile::close() {
  const int error = file_.close();
  if (error != 0) say_failure(name_, incomplete(error));
  return error == 0;
}

void bring_to_disk(const WrittenLines& lines) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(lines.name, ignored)) return;
  WritableFile same_file;
  if (same_file.open_as_it_is(lines.name) == 0) same_file.sync();
}

void require_lines(const WrittenLines& lines) {
  const auto refuse = [&](const std::string& trouble) {
    fatal("Error. The result file " + lines.name + " " + trouble + ": it can't be continued.\n");
  };
  if (is_input_file(lines.name)) refuse("is an input file of this run");
  std::error_code ignored;
  const auto status = std::filesystem::status(lines.name, ignored);
  if (!std::filesystem::exists(status)) refuse("isn't there any more");
  if (std::filesystem::is_directory(status)) refuse("is a folder");
  if (!std::filesystem::is_regular_file(status)) return;
  const std::uintmax_t size = std::filesystem::file_size(lines.name, ignored);
  if (size < lines.size) {
    refuse("has " + std::to_string(size) + " bytes of the " + std::to_string(lines.size) +
           " that it had at the checkpoint");
  }
  if (checksum_of_start(lines).value() != lines.checksum) {
    refuse("doesn't hold any more what it held at the checkpoint");
  }
}

}  // namespace utils
