#include "mesh/import_command.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "mesh/import_case.hpp"
#include "mesh/import_mesh.hpp"
#include "mesh/import_options.hpp"

namespace {

constexpr char import_examples[] = R"(Examples:
  quillmere-mesh import valley.msh valley --terrain dem.tif --friction 0.035 \
      --boundary inflow=hydrograph:flood.txt --boundary outflow=transmissive
  quillmere-mesh import basin.geo basin --level reservoir=100 --section gate
  quillmere-mesh import river.2dm river --friction 0.06 --friction channel=0.03 \
      --boundary 1=discharge:-40m3/s --boundary 2=level:10
  cd valley && quillmere -f data.json

)";

}  // namespace

void add_import_command(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "import",
      "Makes a case folder from a mesh of Gmsh (.msh 2.2 or 4.1, .geo), SMS (.2dm), "
      "in SELAFIN (.slf) or UGRID (.nc).");
  command->formatter_fn([](const CLI::App* self, std::string name, CLI::AppFormatMode mode) {
    return import_examples + CLI::Formatter().make_help(self, std::move(name), mode);
  });
  const auto options = std::make_shared<mesh_import::ImportOptions>();
  mesh_import::add_mesh_options(*command, *options);
  mesh_import::add_case_options(*command, *options);
  command->callback(
      [options] { mesh_import::import_case(*options, mesh_import::read_mesh, std::cout); });
}
