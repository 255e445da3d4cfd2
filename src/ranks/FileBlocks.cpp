#include "ranks/FileBlocks.hpp"

#include <algorithm>

#include "engine/aligned_vector.hpp"

namespace ranks {

using engine::at;

FileBlocks::FileBlocks(int rank, const std::vector<std::uint64_t>& bytes,
                       const std::vector<int>& writers, const WritersRequest& request)
    : block_(request.block),
      blocks_at_once_(std::max<std::uint64_t>(1, request.bytes_at_once / request.block)) {
  const auto blocks_before = [&](std::uint64_t place) { return (place + block_ - 1) / block_; };
  std::vector<std::uint64_t> blocks_of(bytes.size());  // of every writer, so far
  int writer_of_last = 0;                              // block so far
  for (std::size_t other = 0; other < bytes.size(); ++other) {
    const std::uint64_t end = bytes_ + bytes[other];
    const std::uint64_t first = blocks_before(bytes_), count = blocks_before(end) - first;
    const int writer = writers[other];
    std::uint64_t& blocks = blocks_of[at(writer)];
    if (other == at(rank)) {
      begin_ = bytes_;
      end_ = end;
      // The block that an earlier rank begins may belong to the same writer: then one run has all.
      const bool begins_inside = begin_ < std::min(end_, first * block_);
      const bool is_one = begins_inside && writer_of_last == writer;
      if (begins_inside && !is_one) {
        runs_.push_back({writer_of_last, first - 1, 1, blocks_of[at(writer_of_last)] - 1});
      }
      const std::uint64_t more = is_one ? 1 : 0;
      if (count + more > 0) runs_.push_back({writer, first - more, count + more, blocks - more});
    }
    if (count > 0) writer_of_last = writer;
    blocks += count;
    bytes_ = end;
  }
  has_blocks_ = blocks_of[at(rank)] > 0;
  for (const std::uint64_t blocks : blocks_of) {
    rounds_ = std::max(rounds_, (blocks + blocks_at_once_ - 1) / blocks_at_once_);
  }
}

std::vector<FileBlocks::Part> FileBlocks::parts(std::uint64_t round) const {
  std::vector<Part> parts;
  for (const Run& run : runs_) {
    // By numbers of the blocks of the writer.
    const std::uint64_t begin = std::max(round * blocks_at_once_, run.number);
    const std::uint64_t end = std::min((round + 1) * blocks_at_once_, run.number + run.count);
    if (begin >= end) continue;
    const std::uint64_t place = std::max((run.first + (begin - run.number)) * block_, begin_);
    const std::uint64_t place_of_end = std::min((run.first + (end - run.number)) * block_, end_);
    parts.push_back({run.writer, place, place - begin_, place_of_end - place});
  }
  return parts;
}

}  // namespace ranks
