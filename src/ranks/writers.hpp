// The ranks that write files for all.
#pragma once

#include <cstdint>
#include <vector>

namespace ranks {

/// How several ranks write files.
struct WritersRequest {
  int count = 0;  ///< of those that write; 0: one on every machine
  /// Bytes that one of them writes whole, at a multiple of so many: machines do not share what a
  /// file system locks or keeps in pieces.
  std::uint64_t block = std::uint64_t{4} << 20;
  std::uint64_t bytes_at_once = std::uint64_t{16} << 20;  ///< that it takes, or else one block
};

/// For every rank the one that writes its text: the first of its machine, or that of as many ranks
/// as there are for each of a number of writers, which have machines in common as far as possible.
/// `first_on_machine` of every rank.
std::vector<int> writers_of(const std::vector<int>& first_on_machine, int count);

}  // namespace ranks
