// quillmere-export: turns the results of a run into the files that other programs read.
#include "support/Tool.hpp"

int main(int argc, char** argv) {
  tools::Tool tool("quillmere-export", "Exports the results of a run.", "");
  return tool.run(argc, argv);
}
