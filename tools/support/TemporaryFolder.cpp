#include "support/TemporaryFolder.hpp"

#include <stdlib.h>

#include <system_error>

#include "support/Error.hpp"

namespace tools {

TemporaryFolder::TemporaryFolder() {
  const std::string parent = std::filesystem::temp_directory_path().string();
  std::string name = parent + "/quillmere-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    throw Error("no temporary folder can be created in " + parent + ".");
  }
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace tools
