// quillmere-mesh: makes cases from meshes and terrain, and looks at cases before they run.
#include "mesh/check/check_command.hpp"
#include "mesh/check/info_command.hpp"
#include "mesh/import_command.hpp"
#include "mesh/make_command.hpp"
#include "mesh/set_command.hpp"
#include "support/Tool.hpp"

int main(int argc, char** argv) {
  tools::Tool tool("quillmere-mesh", "Makes cases from meshes and terrain, and checks them.",
                   "  quillmere-mesh import valley.msh valley --terrain dem.asc\n"
                   "  quillmere-mesh make outline.gpkg town --size 10 --holes houses.gpkg\n"
                   "  quillmere-mesh set valley boundary.inflow=discharge:-40m3/s end=2h\n"
                   "  quillmere-mesh check valley\n"
                   "  quillmere-mesh info valley\n");
  add_import_command(tool.app());
  add_make_command(tool.app());
  add_set_command(tool.app());
  tools::check::add_check_command(tool.app());
  tools::check::add_info_command(tool.app());
  return tool.run(argc, argv);
}
