// A file open for writing. Every text goes to the system at once: no buffer cuts it in pieces, and
// no failure stays in one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace utils {

/// Errors are error numbers; 0 means success.
class WritableFile {
 public:
  WritableFile() = default;
  ~WritableFile() { close(); }
  WritableFile(const WritableFile&) = delete;
  WritableFile& operator=(const WritableFile&) = delete;

  /// Opens a file of that name, which is emptied or made. Through a link, whatever it leads to.
  int open(const std::string& name);
  /// Opens a file that is there, and leaves it as it is.
  int open_as_it_is(const std::string& name);
  /// Opens a file that is there, to be continued behind a size (bytes), at which it is cut off. A
  /// device or a pipe has no size and is not cut.
  int open_behind(const std::string& name, std::uintmax_t size);
  /// Makes a file that was not there; what had its name is removed, and a link is not followed.
  int create_anew(const std::string& name);
  bool is_open() const { return descriptor_ >= 0; }
  /// Of the open file, for libraries that write themselves.
  int descriptor() const { return descriptor_; }
  /// Whether it lies on a disk, where a write never waits for a reader.
  bool is_regular() const;
  /// Writes the whole text, in one piece if the system takes it so.
  int write(std::string_view text);
  /// Writes the whole text at a place (bytes from the beginning) of a file on a disk.
  int write_at(std::uintmax_t place, std::string_view text);
  /// Cuts the file off at a size (bytes).
  int cut_off(std::uintmax_t size);
  /// Waits until all that was written lies on the disk.
  int sync();
  int close();

 private:
  int take(int descriptor);

  int descriptor_ = -1;
};

}  // namespace utils
