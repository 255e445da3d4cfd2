#include "mesh/gmsh_module.hpp"

#include <gmsh.h>

#include <cstdlib>
#include <exception>
#include <map>
#include <new>
#include <regex>
#include <vector>

#include "mesh/OutlineGeometry.hpp"

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

void (*report_errors)(const std::string& errors) = nullptr;

/// Reports what led to an exception that left a thread of Gmsh, where nothing can catch it.
[[noreturn]] void report_uncaught() {
  const std::string errors = logged_errors();
  report_errors(errors.empty() ? describe(std::current_exception()) : errors);
  std::abort();
}

std::string mesh(const std::function<void()>& build, const std::string& msh,
                 void (*report)(const std::string& errors)) {
  report_errors = report;
  std::set_terminate(report_uncaught);
  std::string thrown;
  try {
    constexpr bool reads_settings = false;  // a settings file is a program in Gmsh's language, too
    gmsh::initialize(0, nullptr, reads_settings);
    gmsh::option::setNumber("General.Terminal", 0);
    gmsh::option::setNumber("General.NumThreads", 1);  // the same mesh every time
    gmsh::logger::start();
    build();
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

void open(const std::string& path) { gmsh::open(path); }

void draw(const Outline& outline, const std::function<double(double, double)>& size_at,
          const Node& origin) {
  OutlineGeometry(outline, size_at, origin).build();
}

}  // namespace

}  // namespace mesh_import

extern "C" __attribute__((visibility("default"))) const mesh_import::GmshModule quillmere_gmsh = {
    GMSH_API_VERSION, mesh_import::open, mesh_import::draw, mesh_import::mesh};
