// Part of every program that counts its lines: the counters are written when it exits; with this
// also where it ends by _exit(), or by a signal that it sends itself. The linker puts these in the
// place of the functions (--wrap).
extern "C" {

void __gcov_dump();

[[noreturn]] void __real__exit(int status);
[[noreturn]] void __wrap__exit(int status) {
  __gcov_dump();
  __real__exit(status);
}

int __real_raise(int signal_number);
int __wrap_raise(int signal_number) {
  __gcov_dump();
  return __real_raise(signal_number);
}
}
