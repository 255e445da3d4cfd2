// quillmere-mesh: makes cases from meshes and terrain, and looks at cases before they run.
#include "support/Tool.hpp"

int main(int argc, char** argv) {
  tools::Tool tool("quillmere-mesh", "Makes cases from meshes and terrain, and checks them.", "");
  return tool.run(argc, argv);
}
