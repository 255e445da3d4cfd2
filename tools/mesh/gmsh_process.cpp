#include "mesh/gmsh_process.hpp"

#include <gmsh.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <filesystem>
#include <map>
#include <new>
#include <regex>
#include <vector>

#include "mesh/gmsh_reader.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/child_process.hpp"

namespace mesh_import {

namespace {

/// What Gmsh calls errors, a line for those that differ in their numbers alone. It goes on after
/// most of them, with a part of the mesh.
std::string logged_errors() {
  std::vector<std::string> lines;
  gmsh::logger::get(lines);
  const std::string mark = "Error: ";
  std::erase_if(lines, [&mark](const std::string& line) { return !line.starts_with(mark); });
  std::string errors;
  std::map<std::string, long> of_kind;  // by the text without its numbers
  static const std::regex number("[-+.0-9]+(e[-+]?[0-9]+)?");
  const auto kind = [](const std::string& line) { return std::regex_replace(line, number, "#"); };
  for (const auto& line : lines) ++of_kind[kind(line)];
  for (const auto& line : lines) {
    long& count = of_kind[kind(line)];
    if (count > 0) errors += "\n  " + line.substr(mark.size());
    if (count > 1) errors += " (and " + std::to_string(count - 1) + " more like it)";
    count = 0;
  }
  return errors;
}

/// The words for what was thrown; some releases of Gmsh throw texts and numbers.
std::string describe(const std::exception_ptr& thrown) {
  try {
    if (thrown) std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    return "\n  out of memory; expected a mesh size in the unit of the points, and fewer cells";
  } catch (const std::exception& error) {
    return std::string("\n  ") + error.what();
  } catch (...) {
  }
  return "\n  no mesh could be made";
}

/// Meshes with Gmsh; the errors, none if all is well.
std::string run_gmsh(const GmshTask& task, const std::string& home, const std::string& msh) {
  std::string thrown;
  try {
    if (task.prepare) task.prepare(home);
  } catch (...) {
    return describe(std::current_exception());
  }
  try {
    constexpr bool reads_settings = false;  // a settings file is a program in Gmsh's language, too
    gmsh::initialize(0, nullptr, reads_settings);
    gmsh::option::setNumber("General.Terminal", 0);
    gmsh::option::setNumber("General.NumThreads", 1);  // the same mesh every time
    gmsh::logger::start();
    task.build();
    gmsh::model::mesh::generate(2);
    gmsh::vectorpair surfaces;
    gmsh::model::getPhysicalGroups(surfaces, 2);
    // Without a named surface, all of them are meant.
    if (surfaces.empty()) gmsh::option::setNumber("Mesh.SaveAll", 1);
    gmsh::option::setNumber("Mesh.MshFileVersion", 4.1);
    gmsh::option::setNumber("Mesh.Binary", 1);
    gmsh::write(msh);
  } catch (...) {
    thrown = describe(std::current_exception());
  }
  const std::string errors = logged_errors();
  return errors.empty() ? thrown : errors;
}

int report_descriptor = -1;  // of the process that meshes

[[noreturn]] void report_and_exit(const std::string& errors) {
  const bool is_said = write(report_descriptor, errors.data(), errors.size()) >= 0;
  _exit(errors.empty() && is_said ? 0 : 1);
}

/// Reports what led to an exception that left a thread of Gmsh, where nothing can catch it.
[[noreturn]] void report_uncaught() {
  const std::string errors = logged_errors();
  report_and_exit(errors.empty() ? describe(std::current_exception()) : errors);
}

/// A mesh size in the wrong unit asks for billions of cells: Gmsh may take all memory that the
/// machine has, and not what other programs need to go on.
void limit_memory() {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // these map terabytes
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
  const tools::TemporaryFolder folder;
  const std::string msh = folder.file("mesh.msh");
  int ends[2];
  if (pipe(ends) != 0) throw tools::Error("no pipe can be made for Gmsh.");
  const pid_t child = tools::fork_child("for Gmsh");
  if (child == 0) {
    close(ends[0]);
    report_descriptor = ends[1];
    std::set_terminate(report_uncaught);
    limit_memory();
    report_and_exit(run_gmsh(task, folder.path(), msh));
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
  mesh.format = "meshed with Gmsh " + std::string(GMSH_API_VERSION);
  return mesh;
}

}  // namespace mesh_import
