// Which rank writes what of a file whose text ranks have, one behind the other.
#pragma once

#include <cstdint>
#include <vector>

#include "ranks/writers.hpp"

namespace ranks {

/// The file is cut into blocks, and each goes whole to the writer of the rank that has its first
/// byte. That is done in rounds, in which every writer gets a few of its blocks.
class FileBlocks {
 public:
  /// As a rank sees it: of the bytes that all ranks have, and the writers of all.
  FileBlocks(int rank, const std::vector<std::uint64_t>& bytes, const std::vector<int>& writers,
             const WritersRequest& request);

  /// Of the whole file.
  std::uint64_t bytes() const { return bytes_; }
  std::uint64_t rounds() const { return rounds_; }
  /// Whether the rank writes any.
  bool has_blocks() const { return has_blocks_; }

  /// A part of the text of the rank.
  struct Part {
    int writer;
    std::uint64_t place;         ///< in the file
    std::uint64_t first, count;  ///< bytes of the text
  };
  /// What goes to writers in a round, one part to each at most.
  std::vector<Part> parts(std::uint64_t round) const;

 private:
  /// Blocks, of which the rank has something.
  struct Run {
    int writer;
    std::uint64_t first, count;
    std::uint64_t number;  ///< of the first among the blocks of the writer
  };

  std::uint64_t block_, blocks_at_once_;
  std::uint64_t bytes_ = 0, rounds_ = 0;
  bool has_blocks_ = false;
  std::uint64_t begin_ = 0, end_ = 0;  ///< of the text of the rank, in the file
  std::vector<Run> runs_;              ///< of different writers
};

}  // namespace ranks
