#include "export/DrawingFolder.hpp"

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "support/PartialFile.hpp"
#include "support/beside_program.hpp"
#include "support/child_process.hpp"
#include "support/read_file.hpp"

namespace exports {

namespace {

std::string script_name() {
  const std::string script = tools::beside_program("share/quillmere/draw_results.py");
  if (!std::filesystem::exists(script)) {
    throw tools::Error("The script " + script + ", which draws, is not there.");
  }
  return script;
}

}  // namespace

void DrawingFolder::run_script() const {
  const std::string script = script_name();
  const pid_t child = tools::fork_child("for the drawing script");
  if (child == 0) {
    unsetenv("MPLBACKEND");
    // -I: only Python's own places are searched for modules, whatever lies in the user's folders.
    if (chdir(folder_.path().c_str()) == 0) {
      execl(QUILLMERE_PYTHON, QUILLMERE_PYTHON, "-I", "-B", script.c_str(),
            static_cast<char*>(nullptr));
    }
    _exit(127);
  }
  const int state = tools::wait_for(child);
  if (WIFSIGNALED(state)) {
    throw tools::Error(std::string("Drawing was ended by a signal: ") + strsignal(WTERMSIG(state)) +
                       ".");
  }
  if (WEXITSTATUS(state) == 127) {
    throw tools::Error("Python is not there as " QUILLMERE_PYTHON
                       ". Install it (Debian: python3-matplotlib).");
  }
  if (WEXITSTATUS(state) != 0) {
    throw tools::Error("Drawing failed; what went wrong stands above.");
  }
}

void DrawingFolder::put_in_place(const std::string& name, const std::string& output) const {
  const std::string bytes = tools::read_file(path(name));
  tools::PartialStream file(output);
  file.stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.commit();
}

}  // namespace exports
