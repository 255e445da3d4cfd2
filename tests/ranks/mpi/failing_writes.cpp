// To be loaded before a program: its writes at places of files, which find no room on the disk.
#include <sys/types.h>

#include <cerrno>
#include <cstddef>

extern "C" {

__attribute__((visibility("default"))) ssize_t pwrite(int, const void*, std::size_t, off_t) {
  errno = ENOSPC;
  return -1;
}

__attribute__((visibility("default"))) ssize_t pwrite64(int file, const void* begin,
                                                        std::size_t size, off64_t place) {
  return pwrite(file, begin, size, place);
}
}
