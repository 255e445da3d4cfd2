// Result files that a killed run never leaves damaged.
#pragma once

#include <fstream>
#include <string>

#include "utils/TextBuffer.hpp"

namespace utils {

/// A file written whole: it grows under a temporary name and takes its own when it is complete, so
/// that an earlier complete file is there until then.
class WholeFile {
 public:
  explicit WholeFile(std::string name);

  /// Writes the buffer out and empties it once it has grown large; to be called after every row.
  void drain(TextBuffer& buffer);
  /// Writes the rest and puts the file in its place. What fails is warned about, once per name.
  void commit(const TextBuffer& rest);

 private:
  std::string name_;
  std::string temporary_name_;
  std::ofstream stream_;
};

/// A file that grows line by line for the whole run; each line reaches the disk whole.
class LineFile {
 public:
  /// Creates or truncates the file; a failure is warned about.
  void open(const std::string& name);
  bool is_open() const { return stream_.is_open(); }
  /// Appends a text that ends in a line end; without an open file it is lost.
  void write(const TextBuffer& line);

 private:
  std::string name_;
  std::ofstream stream_;
};

}  // namespace utils
