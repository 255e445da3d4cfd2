// A result file that takes its name when it is complete.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace exports {

/// A file that grows as "NAME.part": whoever stops on the way leaves no damaged file, nor a partial
/// one, and an earlier complete one as it was. Creates the folders above it.
class PartialFile {
 public:
  explicit PartialFile(std::filesystem::path name);
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  /// Where to write.
  const std::filesystem::path& part() const { return part_; }
  /// Puts the complete file in its place.
  void commit();

 private:
  std::filesystem::path name_, part_;
};

/// The same, as a stream of bytes.
class PartialStream {
 public:
  explicit PartialStream(const std::filesystem::path& name);

  std::ostream& stream() { return stream_; }
  /// Ends the file and puts it in its place; refuses what could not be written.
  void commit();

 private:
  std::filesystem::path name_;
  PartialFile file_;
  std::ofstream stream_;
};

}  // namespace exports
