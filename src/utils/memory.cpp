#include "utils/memory.hpp"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace utils {

void return_large_blocks() {
#ifdef __GLIBC__
  constexpr int large = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, large);
#endif
}

}  // namespace utils
