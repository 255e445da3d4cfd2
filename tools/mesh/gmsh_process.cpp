#include "mesh/gmsh_process.hpp"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <filesystem>

#include "mesh/gmsh_reader.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/child_process.hpp"

namespace mesh_import {

namespace {

int report_descriptor = -1;  // of the process that meshes

[[noreturn]] void report_and_exit(const std::string& errors) {
  const bool is_said = write(report_descriptor, errors.data(), errors.size()) >= 0;
  _exit(errors.empty() && is_said ? 0 : 1);
}

/// Meshes with Gmsh; the errors, none if all is well.
std::string run_gmsh(const GmshModule& gmsh, const GmshTask& task, const std::string& home,
                     const std::string& msh) {
  try {
    if (task.prepare) task.prepare(home);
  } catch (const std::exception& error) {
    return std::string("\n  ") + error.what();
  }
  return gmsh.mesh([&] { task.build(gmsh); }, msh, report_and_exit);
}

/// A mesh size in the wrong unit asks for billions of cells: Gmsh may take all memory that the
/// machine has, and not what other programs need to go on.
void limit_memory() {
#ifndef QUILLMERE_SANITIZED  // these map terabytes
  const auto bytes =
      static_cast<rlim_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = std::min(limit.rlim_cur, bytes);
  setrlimit(RLIMIT_AS, &limit);
#endif
}

}  // namespace

// Intended: a process of its own, since some faulty geometries crash Gmsh, and so that the system
// can keep all that a geometry does from running commands.
Mesh mesh_with_gmsh(const GmshTask& task) {
  const GmshModule& gmsh = load_gmsh();
  const tools::TemporaryFolder folder;
  const std::string msh = folder.file("mesh.msh");
  int ends[2];
  if (pipe(ends) != 0) throw tools::Error("no pipe can be made for Gmsh.");
  const pid_t child = tools::fork_child("for Gmsh");
  if (child == 0) {
    close(ends[0]);
    report_descriptor = ends[1];
    limit_memory();
    report_and_exit(run_gmsh(gmsh, task, folder.path(), msh));
  }
  close(ends[1]);
  const std::string errors = tools::read_all(ends[0]);
  close(ends[0]);
  const int status = tools::wait_for(child);
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGSYS) throw tools::Error(task.on_forbidden_call);
  if (WIFSIGNALED(status)) throw tools::Error(task.name + ": Gmsh crashed on this geometry.");
  if (!errors.empty()) throw tools::Error(task.name + ": Gmsh reports:" + errors);
  if (status != 0 || !std::filesystem::exists(msh)) {
    throw tools::Error(task.name +
                       ": Gmsh ended without a mesh; expected a geometry without Exit.");
  }
  Mesh mesh = read_msh(msh);
  mesh.format = "meshed with Gmsh " + std::string(gmsh.version);
  return mesh;
}

}  // namespace mesh_import
