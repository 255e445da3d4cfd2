// Lets one call of a running program fail, as a full disk, a bad one, or a machine without memory
// would. To be preloaded (LD_PRELOAD). FAULT="KIND N ERROR MODE" names the call: the N-th of its
// kind from the beginning of main() on, with the error number that it sets, and MODE says which
// fail: "once" that one alone, "from" it and all that follow, "short" none, but that one moves half
// of its bytes only, "cut" the same, and the next one fails. FAULT_COUNTS names a file that gets
// the number of calls of every kind when the program ends. Standard error never fails: it is where
// the program says what happened to it.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

enum kind { OPEN, CLOSE, READ, WRITE, RENAME, REMOVE, TRUNCATE, MEMORY, THREAD, KINDS };
static const char* const kind_names[KINDS] = {"open",   "close",    "read",   "write", "rename",
                                              "remove", "truncate", "memory", "thread"};
enum mode { ONCE, FROM, SHORT, CUT };
static const char* const mode_names[] = {"once", "from", "short", "cut"};

enum outcome { SUCCEEDS, FAILS, MOVES_HALF };

static atomic_bool in_main;
static atomic_long calls[KINDS];
static int faulty_kind = -1, error_number, fault_mode;
static long faulty_call;

static int position(const char* word, const char* const* words, int count) {
  for (int i = 0; i < count; ++i) {
    if (strcmp(word, words[i]) == 0) return i;
  }
  fprintf(stderr, "faults: no \"%s\"\n", word);
  _exit(99);
}

static void read_settings(void) {
  const char* text = getenv("FAULT");
  if (text == NULL) return;
  char kind[16], mode[16];
  if (sscanf(text, "%15s %ld %d %15s", kind, &faulty_call, &error_number, mode) != 4) {
    fprintf(stderr, "faults: FAULT is \"%s\", expected KIND N ERROR MODE\n", text);
    _exit(99);
  }
  faulty_kind = position(kind, kind_names, KINDS);
  fault_mode = position(mode, mode_names, 4);
}

static enum outcome next_outcome(enum kind kind) {
  if (!in_main) return SUCCEEDS;
  const long call = ++calls[kind];
  if ((int)kind != faulty_kind || call < faulty_call) return SUCCEEDS;
  const bool is_first = call == faulty_call;
  const bool moves_half = is_first && (fault_mode == SHORT || fault_mode == CUT);
  if (moves_half) return MOVES_HALF;
  const bool fails =
      is_first || fault_mode == FROM || (fault_mode == CUT && call == faulty_call + 1);
  if (!fails) return SUCCEEDS;
  errno = error_number;
  return FAILS;
}

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

// --- The beginning and the end -------------------------------------------------------------------

static int (*real_main)(int, char**, char**);

static int main_with_faults(int argc, char** argv, char** environment) {
  read_settings();
  in_main = true;
  return real_main(argc, argv, environment);
}

int __libc_start_main(int (*main_function)(int, char**, char**), int argc, char** argv,
                      void (*begin)(void), void (*end)(void), void (*loader_end)(void),
                      void* stack_end) {
  real_main = main_function;
  __typeof__(&__libc_start_main) start =
      (__typeof__(&__libc_start_main))dlsym(RTLD_NEXT, "__libc_start_main");
  return start(main_with_faults, argc, argv, begin, end, loader_end, stack_end);
}

__attribute__((destructor)) static void write_counts(void) {
  in_main = false;
  const char* name = getenv("FAULT_COUNTS");
  FILE* file = name != NULL ? REAL(fopen)(name, "w") : NULL;
  if (file == NULL) return;
  for (int kind = 0; kind < KINDS; ++kind) {
    fprintf(file, "%s %ld\n", kind_names[kind], (long)calls[kind]);
  }
  REAL(fclose)(file);
}

// --- Files ---------------------------------------------------------------------------------------

#define OPENS(name)                                                                      \
  int name(const char* path, int flags, ...) {                                           \
    va_list rest;                                                                        \
    va_start(rest, flags);                                                               \
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                                        \
    if (next_outcome(OPEN) == FAILS) return -1;                                          \
    return REAL(name)(path, flags, mode);                                                \
  }
OPENS(open)
OPENS(open64)

#define OPENS_AT(name)                                                                   \
  int name(int folder, const char* path, int flags, ...) {                               \
    va_list rest;                                                                        \
    va_start(rest, flags);                                                               \
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                                        \
    if (next_outcome(OPEN) == FAILS) return -1;                                          \
    return REAL(name)(folder, path, flags, mode);                                        \
  }
OPENS_AT(openat)
OPENS_AT(openat64)

FILE* fopen(const char* path, const char* mode) {
  return next_outcome(OPEN) == FAILS ? NULL : REAL(fopen)(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  return next_outcome(OPEN) == FAILS ? NULL : REAL(fopen64)(path, mode);
}

// The system closes a file whatever it answers.
int close(int file) {
  const enum outcome outcome = next_outcome(CLOSE);
  const int error = errno;
  const int answer = REAL(close)(file);
  if (outcome != FAILS) return answer;
  errno = error;
  return -1;
}

int fclose(FILE* file) {
  const enum outcome outcome = next_outcome(CLOSE);
  const int error = errno;
  const int answer = REAL(fclose)(file);
  if (outcome != FAILS) return answer;
  errno = error;
  return EOF;
}

static size_t half(size_t size) { return size > 1 ? size / 2 : size; }

ssize_t read(int file, void* bytes, size_t size) {
  switch (next_outcome(READ)) {
    case FAILS:
      return -1;
    case MOVES_HALF:
      return REAL(read)(file, bytes, half(size));
    case SUCCEEDS:
      break;
  }
  return REAL(read)(file, bytes, size);
}

ssize_t write(int file, const void* bytes, size_t size) {
  switch (file == STDERR_FILENO ? SUCCEEDS : next_outcome(WRITE)) {
    case FAILS:
      return -1;
    case MOVES_HALF:
      return REAL(write)(file, bytes, half(size));
    case SUCCEEDS:
      break;
  }
  return REAL(write)(file, bytes, size);
}

ssize_t writev(int file, const struct iovec* parts, int count) {
  switch (file == STDERR_FILENO ? SUCCEEDS : next_outcome(WRITE)) {
    case FAILS:
      return -1;
    case MOVES_HALF:
      return REAL(write)(file, parts[0].iov_base, half(parts[0].iov_len));
    case SUCCEEDS:
      break;
  }
  return REAL(writev)(file, parts, count);
}

int rename(const char* old_name, const char* new_name) {
  return next_outcome(RENAME) == FAILS ? -1 : REAL(rename)(old_name, new_name);
}

int renameat(int old_folder, const char* old_name, int new_folder, const char* new_name) {
  if (next_outcome(RENAME) == FAILS) return -1;
  return REAL(renameat)(old_folder, old_name, new_folder, new_name);
}

int unlink(const char* name) { return next_outcome(REMOVE) == FAILS ? -1 : REAL(unlink)(name); }

int remove(const char* name) { return next_outcome(REMOVE) == FAILS ? -1 : REAL(remove)(name); }

int truncate(const char* name, off_t size) {
  return next_outcome(TRUNCATE) == FAILS ? -1 : REAL(truncate)(name, size);
}

int ftruncate(int file, off_t size) {
  return next_outcome(TRUNCATE) == FAILS ? -1 : REAL(ftruncate)(file, size);
}

// --- Memory: dlsym() itself allocates, so the C library's own names are called -------------------

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) { return next_outcome(MEMORY) == FAILS ? NULL : __libc_malloc(size); }

void* calloc(size_t count, size_t size) {
  return next_outcome(MEMORY) == FAILS ? NULL : __libc_calloc(count, size);
}

void* realloc(void* old, size_t size) {
  return next_outcome(MEMORY) == FAILS ? NULL : __libc_realloc(old, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
  return next_outcome(MEMORY) == FAILS ? NULL : __libc_memalign(alignment, size);
}

int posix_memalign(void** place, size_t alignment, size_t size) {
  if (next_outcome(MEMORY) == FAILS) return error_number;
  *place = __libc_memalign(alignment, size);
  return *place != NULL ? 0 : ENOMEM;
}

// --- Threads -------------------------------------------------------------------------------------

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*begin)(void*),
                   void* argument) {
  if (next_outcome(THREAD) == FAILS) return error_number;
  return REAL(pthread_create)(thread, attributes, begin, argument);
}
