#include "support/PartialFile.hpp"

#include <cstring>
#include <locale>
#include <system_error>
#include <utility>

#include "support/Error.hpp"
#include "utils/files.hpp"

namespace tools {

namespace fs = std::filesystem;

namespace {

std::string kind_of(fs::file_type type) {
  switch (type) {
    case fs::file_type::directory:
      return "a folder";
    case fs::file_type::symlink:
      return "a link";
    case fs::file_type::fifo:
      return "a pipe";
    case fs::file_type::socket:
      return "a socket";
    case fs::file_type::character:
    case fs::file_type::block:
      return "a device";
    default:
      return "no regular file";
  }
}

void refuse_input(const fs::path& name) {
  if (!utils::is_input_file(name.string())) return;
  throw Error("The file " + name.string() +
              " would be replaced, but it is read, or belongs to the case: expected another name "
              "for the output.");
}

[[noreturn]] void refuse_incomplete(const fs::path& name) {
  throw Error("The file " + name.string() + " couldn't be written completely (is the disk full?).");
}

}  // namespace

void prepare_place(const fs::path& name) {
  std::error_code error;
  if (name.has_parent_path()) fs::create_directories(name.parent_path(), error);
  if (error) {
    throw Error("The folder " + name.parent_path().string() +
                " couldn't be created: " + error.message() + ".");
  }
  const fs::file_type type = fs::symlink_status(name, error).type();
  if (type != fs::file_type::not_found && type != fs::file_type::regular) {
    throw Error("The file " + name.string() + " couldn't be written: " +
                (type == fs::file_type::none ? error.message() : "it is " + kind_of(type)) +
                "; expected the name of a regular file, or a new one.");
  }
  refuse_input(name);
}

PartialFile::PartialFile(fs::path name) : name_(std::move(name)), part_(name_.string() + ".part") {
  prepare_place(name_);
  refuse_input(part_);
  // Who may write into the folder could have put a link to another file there: it is not followed.
  if (const int error = file_.create_anew(part_.string()); error != 0) {
    throw Error("The file " + part_.string() + " couldn't be created: " + std::strerror(error) +
                ".");
  }
}

PartialFile::~PartialFile() {
  std::error_code ignored;
  fs::remove(part_, ignored);
}

// Intended: not its name. Libraries take some names for more than a file (NetCDF those with "://"
// or a backslash, GDAL those below "/vsimem" and its like), and this leads to the file that was
// made.
std::string PartialFile::part() const { return utils::name_of_descriptor(file_.descriptor()); }

void PartialFile::finish() {
  if (file_.close() != 0) refuse_incomplete(name_);
}

void PartialFile::commit() {
  finish();
  refuse_input(name_);  // which may have been read meanwhile
  std::error_code error;
  fs::rename(part_, name_, error);
  if (error) {
    throw Error("The file " + name_.string() + " couldn't be put in its place: " + error.message() +
                ".");
  }
}

PartialStream::PartialStream(const fs::path& name)
    : file_(name), stream_(file_.part(), std::ios::binary) {
  if (!stream_) throw Error("The file " + name.string() + " couldn't be opened to be written.");
  stream_.imbue(std::locale::classic());  // a point in numbers, whatever the locale
}

void PartialStream::finish() {
  stream_.close();
  if (!stream_) refuse_incomplete(file_.name());
  file_.finish();
}

void PartialStream::commit() {
  if (stream_.is_open()) finish();
  file_.commit();
}

}  // namespace tools
