#include "support/beside_program.hpp"

#include <filesystem>

namespace tools {

std::string beside_program(const std::string& path) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  return (program.parent_path().parent_path() / path).string();
}

}  // namespace tools
