#include "utils/memory.hpp"

#include <unistd.h>

#include <cstdlib>
#include <new>
#include <string_view>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "utils/signals.hpp"

namespace utils {

namespace {

[[noreturn]] void say_and_end() {
  constexpr std::string_view message =
      "Error. There is not enough memory for this run. The results that are complete stay.\n";
  constexpr int status = 255;
  [[maybe_unused]] const ssize_t ignored = write(STDERR_FILENO, message.data(), message.size());
  exit_between_lines(status);
}

}  // namespace

void return_large_blocks() {
#ifdef __GLIBC__
  constexpr int large = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, large);
#endif
}

void end_where_memory_is_missing() { std::set_new_handler(say_and_end); }

}  // namespace utils
