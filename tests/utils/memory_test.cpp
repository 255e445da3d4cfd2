#include "utils/memory.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <vector>

namespace {

// Sanitizers bring an allocator of their own.
#if defined(__GLIBC__) && !defined(QUILLMERE_SANITIZED)

constexpr std::size_t MiB = 1 << 20;

std::size_t resident_bytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST(ReturnLargeBlocks, FreedBlocksLeaveTheProcessWhateverWasFreedBefore) {
  utils::return_large_blocks();
  { std::vector<char> largest(30 * MiB, 'a'); }
  auto freed_later = std::make_unique<std::vector<char>>(20 * MiB, 'b');
  const std::vector<char> above(2 * MiB, 'c');  // keeps the end of the heap in use
  const std::size_t before = resident_bytes();
  freed_later.reset();
  EXPECT_LT(resident_bytes() + 19 * MiB, before);
}

#endif

}  // namespace
