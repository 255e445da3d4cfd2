#include "export/PartialFile.hpp"

#include <locale>
#include <system_error>

#include "support/Error.hpp"

namespace exports {

namespace fs = std::filesystem;

PartialFile::PartialFile(fs::path name) : name_(std::move(name)), part_(name_.string() + ".part") {
  std::error_code error;
  if (name_.has_parent_path()) fs::create_directories(name_.parent_path(), error);
  if (error) {
    throw tools::Error("The folder " + name_.parent_path().string() +
                       " couldn't be created: " + error.message() + ".");
  }
}

PartialFile::~PartialFile() {
  std::error_code ignored;
  fs::remove(part_, ignored);
}

void PartialFile::commit() {
  std::error_code error;
  fs::rename(part_, name_, error);
  if (error) {
    throw tools::Error("The file " + name_.string() +
                       " couldn't be put in its place: " + error.message() + ".");
  }
}

PartialStream::PartialStream(const fs::path& name)
    : name_(name), file_(name), stream_(file_.part(), std::ios::binary) {
  if (!stream_) throw tools::Error("The file " + name.string() + " couldn't be created.");
  stream_.imbue(std::locale::classic());  // a point in numbers, whatever the locale
}

void PartialStream::commit() {
  stream_.close();
  if (!stream_) {
    throw tools::Error("The file " + name_.string() +
                       " couldn't be written completely (is the disk full?).");
  }
  file_.commit();
}

}  // namespace exports
