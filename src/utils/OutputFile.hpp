// Result files that a killed run never leaves damaged. A file that cannot be created is warned
// about and the run goes on without it; one that cannot be written to its end (a full disk) ends
// the run, after the other outputs.
#pragma once

#include <cstdint>
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
  /// Writes the rest and puts the file in its place; an earlier file stays if that fails.
  void commit(const TextBuffer& rest);

 private:
  void put(const TextBuffer& text);

  std::string name_;
  std::string temporary_name_;
  std::ofstream stream_;
  int error_ = 0;  ///< number of the error that kept the file from being complete
};

/// A file that grows line by line for the whole run; each line reaches the disk whole or not at
/// all.
class LineFile {
 public:
  /// Creates or truncates the file; a failure is warned about. A file that the run has read is not
  /// touched: the run ends. To be called on the main thread.
  void open(const std::string& name);
  /// Whether the file could be created.
  bool is_open() const { return is_created_; }
  /// Appends a text that ends in a line end; without an open file it is lost.
  void write(const TextBuffer& line);

 private:
  void cut_off_unfinished_line() const;

  std::string name_;
  std::ofstream stream_;
  bool is_created_ = false;
  std::uintmax_t size_ = 0;  ///< of the complete lines
};

}  // namespace utils
