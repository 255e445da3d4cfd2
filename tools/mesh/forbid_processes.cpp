#include "mesh/forbid_processes.hpp"

#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <bit>
#include <cerrno>
#include <cstddef>
#include <vector>

namespace mesh_import {

namespace {

static_assert(std::endian::native == std::endian::little,
              "the low half of an argument comes first");

sock_filter load(std::size_t offset) {
  return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
}
sock_filter answer(unsigned action) { return BPF_STMT(BPF_RET | BPF_K, action); }
/// Passes over the next line unless the number that was loaded is this one.
sock_filter if_it_is(unsigned number) { return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1); }
/// Passes over the next line unless one of the bits is set in the number that was loaded.
sock_filter if_it_has(unsigned bits) { return BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, bits, 0, 1); }

}  // namespace

bool forbid_processes() {
  std::vector<sock_filter> lines = {load(offsetof(seccomp_data, nr))};
  for (const unsigned call : {
#ifdef __NR_fork
           __NR_fork, __NR_vfork,
#endif
           __NR_execve, __NR_execveat}) {
    lines.insert(lines.end(), {if_it_is(call), answer(SECCOMP_RET_KILL_PROCESS)});
  }
  // Where clone3 is missing, the C library calls clone, whose flags a filter sees.
  lines.insert(lines.end(), {if_it_is(__NR_clone3), answer(SECCOMP_RET_ERRNO | ENOSYS)});
  // Whatever is not clone is allowed; of clone, what makes threads.
  lines.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_clone, 1, 0));
  lines.push_back(answer(SECCOMP_RET_ALLOW));
  lines.insert(lines.end(), {load(offsetof(seccomp_data, args)), if_it_has(CLONE_THREAD),
                             answer(SECCOMP_RET_ALLOW), answer(SECCOMP_RET_KILL_PROCESS)});
  const sock_fprog program = {static_cast<unsigned short>(lines.size()), lines.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace mesh_import
