// Files that are read whole.
#pragma once

#include <string>

namespace tools {

/// The bytes of a file. Throws Error for a file that cannot be opened, or not be read to its end.
std::string read_file(const std::string& path);

}  // namespace tools
