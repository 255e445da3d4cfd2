#include "support/run_program.hpp"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace support {

namespace {

/// A file in memory that holds the text.
int memory_file(const std::string& text) {
  const int file = memfd_create("quillmere_test", MFD_CLOEXEC);
  if (file < 0 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("no file in memory for a run");
  }
  lseek(file, 0, SEEK_SET);
  return file;
}

std::string text_of(int file) {
  std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
  const ssize_t size = pread(file, text.data(), text.size(), 0);
  text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return text;
}

/// A script that starts the tests in the background lets them ignore some of these; the program
/// would as well, and run on however often it is told to end.
void take_signals() {
  for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) signal(signal_number, SIG_DFL);
}

/// Turns the child process into the program.
[[noreturn]] void become_program(const std::string& folder, std::vector<char*> arguments, int in,
                                 int out, int err, const RunOptions& options) {
  constexpr int cannot_run = 127;
  take_signals();
  dup2(in, STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  if (memory_can_be_limited && options.address_space > 0) {
    const rlimit limit{options.address_space, options.address_space};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(cannot_run);
  }
  for (const auto& [resource, most] : options.limits) {
    const rlimit limit{most, most};
    if (setrlimit(static_cast<__rlimit_resource_t>(resource), &limit) != 0) _exit(cannot_run);
  }
  for (const int stream : options.closed) close(stream);
  if (chdir(folder.c_str()) == 0) execv(options.program.c_str(), arguments.data());
  _exit(cannot_run);
}

}  // namespace

RunningProgram::RunningProgram(const std::string& folder, const std::vector<std::string>& arguments,
                               const RunOptions& options)
    : time_limit_(options.time_limit), out_(memory_file("")), err_(memory_file("")) {
  std::vector<std::string> words = {options.program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const int in = memory_file(options.input);
  process_ = fork();
  if (process_ == 0) {
    become_program(folder, pointers, in, options.out >= 0 ? options.out : out_,
                   options.err >= 0 ? options.err : err_, options);
  }
  close(in);
  if (process_ < 0) throw std::runtime_error("no process for a run");
}

RunningProgram::~RunningProgram() {
  if (process_ > 0) {
    kill();
    waitpid(process_, nullptr, 0);
  }
  close(out_);
  close(err_);
}

void RunningProgram::send(int signal) { ::kill(process_, signal); }

void RunningProgram::kill() { send(SIGKILL); }

bool RunningProgram::is_running() {
  siginfo_t ended = {};  // left for wait()
  waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT);
  return ended.si_pid == 0;
}

RunResult RunningProgram::wait() {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  RunResult result;
  int state = 0;
  while (waitpid(process_, &state, WNOHANG) == 0) {
    if (!result.timed_out &&
        std::chrono::duration<double>(Clock::now() - start).count() > time_limit_) {
      result.timed_out = true;
      kill();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  process_ = -1;
  if (WIFEXITED(state)) result.status = WEXITSTATUS(state);
  if (WIFSIGNALED(state)) result.signal = WTERMSIG(state);
  result.out = text_of(out_);
  result.err = text_of(err_);
  return result;
}

RunResult run_program(const std::string& folder, const std::vector<std::string>& arguments,
                      const RunOptions& options) {
  return RunningProgram(folder, arguments, options).wait();
}

RunResult run_case(const TemporaryFolder& folder, const RunOptions& options) {
  return run_program(folder.path(), {"-f", "data.json", "-nodisplay"}, options);
}

}  // namespace support
