#include "checkpoint/checkpoint_pair.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace checkpoint {

std::array<std::string, 2> files_of(const std::string& name) { return {name + ".a", name + ".b"}; }

std::array<FoundFile, 2> find_files(const std::string& name) {
  std::array<FoundFile, 2> found;
  for (std::size_t k = 0; k < found.size(); ++k) {
    FoundFile& file = found[k];
    file.name = files_of(name)[k];
    std::error_code ignored;
    const auto status = std::filesystem::status(file.name, ignored);
    file.is_there = std::filesystem::exists(status);
    std::ifstream stream;
    if (std::filesystem::is_regular_file(status)) stream.open(file.name, std::ios::binary);
    if (stream.is_open()) {
      file.look = look_at(stream);
    } else if (file.is_there) {
      file.look = {.is_foreign = true, .trouble = "it is no file that can be read"};
    } else {
      file.look.trouble = "it does not exist";
    }
  }
  return found;
}

Loaded load_newest(const std::string& name) {
  std::array<FoundFile, 2> files = find_files(name);
  if (files[1].look.number > files[0].look.number) std::swap(files[0], files[1]);
  Loaded loaded;
  std::string troubles;
  for (const FoundFile& file : files) {
    std::string trouble = file.look.trouble;
    if (trouble.empty() && loaded.file.empty()) {
      try {
        std::ifstream stream(file.name, std::ios::binary);
        loaded.contents = read_file(stream);
        loaded.file = file.name;
        loaded.number = file.look.number;
      } catch (const BadFile& bad) {
        trouble = bad.what();
      }
    }
    if (trouble.empty()) continue;
    troubles += " " + file.name + ": " + trouble + ".";
    if (file.is_there) loaded.warnings.push_back(file.name + ": " + trouble);
  }
  if (loaded.file.empty()) {
    throw std::runtime_error("Error. There is no checkpoint \"" + name + "\" to go on from." +
                             troubles);
  }
  return loaded;
}

}  // namespace checkpoint
