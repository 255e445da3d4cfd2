// Processes that a companion program starts for a part of its work.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace tools {

/// Forks: 0 in the child, which ends with this process, whatever ends that, and leaves Ctrl-C to
/// it. Throws Error, with `purpose` ("for Gmsh"), if no process can be started.
pid_t fork_child(const std::string& purpose);

/// Whether an action ends well or by an exception where it is done in a process of its own,
/// silently, and does not crash there. Throws Error, with `purpose`, if no process can be started.
bool survives(const std::string& purpose, const std::function<void()>& action);

/// Waits for the end of a child: its status as waitpid() tells it.
int wait_for(pid_t child);

}  // namespace tools
