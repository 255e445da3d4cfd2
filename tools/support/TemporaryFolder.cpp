#include "support/TemporaryFolder.hpp"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "support/Error.hpp"
#include "support/child_process.hpp"

namespace tools {

namespace {

void remove_folder(const std::filesystem::path& path) {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

/// The process that outlives this one: it waits for a word that it isn't needed, or until nobody
/// holds the other end of the pipe any more, neither the program nor a child.
[[noreturn]] void keep_watch(const std::filesystem::path& path, int pipe_end) {
  setsid();  // a signal to all processes of a terminal or of a service does not reach it
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) std::signal(number, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // Programs that read them would wait for this process too.
    if (stream != pipe_end) close(stream);
  }
  char word;
  ssize_t n_read;
  do n_read = read(pipe_end, &word, 1);
  while (n_read < 0 && errno == EINTR);
  if (n_read == 0) remove_folder(path);
  _exit(0);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  const std::string parent = std::filesystem::temp_directory_path().string();
  std::string name = parent + "/quillmere-";
  name.append(6, 'X');  // for mkdtemp to replace
  if (mkdtemp(name.data()) == nullptr) {
    throw Error("no temporary folder can be created in " + parent + ".");
  }
  path_ = name;
  int ends[2];
  if (pipe(ends) == 0) {
    keeper_ = fork();
    if (keeper_ == 0) {
      close(ends[1]);
      keep_watch(path_, ends[0]);
    }
    close(ends[0]);
    lifeline_ = ends[1];
  }
  if (keeper_ < 0) {
    close(lifeline_);
    remove_folder(path_);
    throw Error("no process can be started that would remove the temporary folder.");
  }
}

TemporaryFolder::~TemporaryFolder() {
  remove_folder(path_);
  [[maybe_unused]] const ssize_t ignored = write(lifeline_, "", 1);
  close(lifeline_);
  wait_for(keeper_);
}

}  // namespace tools
