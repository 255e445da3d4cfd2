// quillmere-mesh: makes cases from meshes and terrain, and looks at cases before they run.
#include "mesh/check_command.hpp"
#include "mesh/info_command.hpp"
#include "support/Tool.hpp"

int main(int argc, char** argv) {
  tools::Tool tool("quillmere-mesh", "Makes cases from meshes and terrain, and checks them.",
                   "  quillmere-mesh check my_case\n"
                   "  quillmere-mesh info my_case\n");
  add_check_command(tool.app());
  add_info_command(tool.app());
  return tool.run(argc, argv);
}
