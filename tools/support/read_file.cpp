#include "support/read_file.hpp"

#include <fstream>

#include "support/Error.hpp"

namespace tools {

std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw Error(path + ": the file cannot be opened.");
  constexpr std::size_t chunk = std::size_t{1} << 20;
  std::string text;
  std::size_t size = 0;
  do {
    text.resize(size + chunk);
    file.read(text.data() + size, chunk);
    size += static_cast<std::size_t>(file.gcount());
  } while (file);
  if (file.bad()) throw Error(path + ": the file cannot be read to its end.");
  text.resize(size);
  return text;
}

}  // namespace tools
