// Keeps a process from starting programs.
#pragma once

namespace mesh_import {

/// From now on this process ends with SIGSYS where it tries to start a program or another process;
/// threads are allowed. False if the system cannot promise that.
bool forbid_processes();

}  // namespace mesh_import
