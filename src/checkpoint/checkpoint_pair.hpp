// The two files of a checkpoint, NAME.a and NAME.b, written in turn: while one is written the other
// is whole.
#pragma once

#include <array>
#include <string>

#include "checkpoint/checkpoint_file.hpp"

namespace checkpoint {

std::array<std::string, 2> files_of(const std::string& name);

struct FoundFile {
  std::string name;
  bool is_there = false;
  Look look;
};
/// Both files as they lie on the disk.
std::array<FoundFile, 2> find_files(const std::string& name);

struct Loaded {
  std::string file;
  std::uint64_t number = 0;           ///< in a row
  Checkpoint contents;                ///< without its rows, which have been found to be whole
  std::vector<std::string> warnings;  ///< of the other file, where that is not whole
};
/// The newer one of those that are whole. Throws std::runtime_error, with a message for the user,
/// where neither is.
Loaded load_newest(const std::string& name);

}  // namespace checkpoint
