// Processes that a companion program starts for a part of its work.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

namespace tools {

/// Forks: 0 in the child, which ends with this process, whatever ends that, and leaves Ctrl-C to
/// it. Throws Error, with `purpose` ("for Gmsh"), if no process can be started.
pid_t fork_child(const std::string& purpose);

/// All that comes out of a pipe until its other end is closed.
std::string read_all(int descriptor);

/// Tries an action in a process of its own, silently: the message of the std::exception that it
/// throws there, empty without one, or none where it crashes. Throws Error, with `purpose`, if no
/// process can be started.
std::optional<std::string> try_apart(const std::string& purpose,
                                     const std::function<void()>& action);

/// Waits for the end of a child: its status as waitpid() tells it.
int wait_for(pid_t child);

}  // namespace tools
