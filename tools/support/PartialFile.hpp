// A file that takes its name when it is complete.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "utils/WritableFile.hpp"

namespace tools {

/// Creates the folders above a file that is to be written. Refuses a name under which something
/// else than a regular file stands (a device, a link, a folder), and one that this program has
/// read from.
void prepare_place(const std::filesystem::path& name);

/// A file that grows as "NAME.part": whoever stops on the way leaves no damaged file, nor a partial
/// one, and an earlier complete one as it was.
class PartialFile {
 public:
  explicit PartialFile(std::filesystem::path name);
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  const std::filesystem::path& name() const { return name_; }
  /// Where to write: the name by which this process knows the new file, whatever it is called.
  std::string part() const;
  /// To be called when all is written: nobody can write to part() any more.
  void finish();
  /// Puts the file in its place, finished if it is not yet.
  void commit();

 private:
  std::filesystem::path name_, part_;
  utils::WritableFile file_;
};

/// The same, as a stream of bytes.
class PartialStream {
 public:
  explicit PartialStream(const std::filesystem::path& name);

  std::ostream& stream() { return stream_; }
  /// Ends the file; refuses what could not be written.
  void finish();
  /// Puts the file in its place, finished if it is not yet.
  void commit();

 private:
  PartialFile file_;
  std::ofstream stream_;
};

}  // namespace tools
