// A folder for what a companion program only needs while it works.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace tools {

/// Lives as long as the object, and no longer than the process, whatever ends that: a small process
/// of its own keeps watch and removes the folder.
class TemporaryFolder {
 public:
  /// Throws Error if no folder can be created.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path() const { return path_.string(); }
  /// The path of a file in it.
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
  pid_t keeper_ = -1;
  int lifeline_ = -1;  ///< a pipe to the process that keeps watch; children inherit it
};

}  // namespace tools
