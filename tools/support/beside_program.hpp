// Files that are installed along with the program.
#pragma once

#include <string>

namespace tools {

/// The path of a file, as in "share/quillmere/draw_results.py", from the folder in which the
/// program's own folder lies, in the build tree and where it is installed.
std::string beside_program(const std::string& path);

}  // namespace tools
