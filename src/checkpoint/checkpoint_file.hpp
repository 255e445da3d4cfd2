// The file of a checkpoint: a header, the parts of the checkpoint and the rows of its flow as bytes
// in blocks with checksums, and a footer, which alone makes the file count: it is written when all
// that stands before it lies on the disk. A file of another machine is read where that has the same
// order of bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <stdexcept>
#include <string>

#include "checkpoint/Checkpoint.hpp"
#include "utils/WritableFile.hpp"

namespace checkpoint {

/// A file is no whole checkpoint; what() completes "FILE: ".
class BadFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes a checkpoint, whose rows come as they are put. After an error nothing more is written.
class FileWriter : public utils::ByteSink {
 public:
  /// Opens a file for the checkpoint of a number in a row, and writes all but its rows.
  FileWriter(const std::string& name, std::uint64_t number, const Checkpoint& contents);
  ~FileWriter() override;

  /// Bytes of rows.
  void put(const void* from, std::size_t count) override;
  /// `may_count` is asked when all lies on the disk but for the footer; where it says no, the file
  /// stays without one. Answers what went wrong with the file, as text; empty if nothing did.
  std::string finish(const std::function<bool()>& may_count);

 private:
  class BlockWriter;

  utils::WritableFile file_;
  std::unique_ptr<BlockWriter> blocks_;
  int error_ = 0;
};

/// What the start and the end of a file say.
struct Look {
  bool is_foreign = false;   ///< it never was a checkpoint, not even a piece of one
  std::string trouble = {};  ///< why it is no whole checkpoint; empty: it may be one
  std::uint64_t number = 0;  ///< in a row, of one without trouble
};
Look look_at(std::istream& file);

/// Reads a checkpoint, and then its rows one behind the other. Takes no more memory than a few
/// times the size of what stands before the rows.
class FileReader : public utils::ByteSource {
 public:
  /// Of a file, which must outlive it. Throws a BadFile where that holds no checkpoint up to the
  /// rows.
  explicit FileReader(std::istream& file);
  ~FileReader() override;

  const Checkpoint& contents() const { return contents_; }
  /// In a row, as of Look.
  std::uint64_t number() const;
  /// Bytes of rows; throws a BadFile where the file does not hold them undamaged.
  void take(void* to, std::size_t count) override;
  std::uint64_t left() const override;
  /// Once all is read: throws a BadFile where the end of the file does not belong to it.
  void finish() const;

 private:
  class BlockReader;

  std::unique_ptr<BlockReader> blocks_;
  Checkpoint contents_;
};

/// The checkpoint of a file that has been read to its end; throws a BadFile where it is not whole.
Checkpoint read_file(std::istream& file);

}  // namespace checkpoint
