// The file of a checkpoint: a header, the parts of the checkpoint as bytes in blocks with
// checksums, and a footer, which alone makes the file count: it is written when all that stands
// before it lies on the disk. A file of another machine is read where that has the same order of
// bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <stdexcept>
#include <string>

#include "checkpoint/Checkpoint.hpp"

namespace checkpoint {

/// A file is no whole checkpoint; what() completes "FILE: ".
class BadFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes a checkpoint with its number in a row. `may_count` is asked when all lies on the disk but
/// for the footer; where it says no, the file stays without one. Answers what went wrong, as text;
/// empty if nothing did.
std::string write_file(const std::string& name, std::uint64_t number, const Checkpoint& contents,
                       const std::function<bool()>& may_count);

/// What the start and the end of a file say.
struct Look {
  bool is_foreign = false;   ///< it never was a checkpoint, not even a piece of one
  std::string trouble = {};  ///< why it is no whole checkpoint; empty: it may be one
  std::uint64_t number = 0;  ///< in a row, of one without trouble
};
Look look_at(std::istream& file);

/// Reads a checkpoint; throws a BadFile where that is not what the file holds, whole. Takes no more
/// memory than a few times the size of the file.
Checkpoint read_file(std::istream& file);

}  // namespace checkpoint
