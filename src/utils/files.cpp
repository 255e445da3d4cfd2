#include "utils/files.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <set>

#include "globals/Globals.hpp"
#include "utils/standard_streams.hpp"
#include "utils/stop.hpp"

namespace utils {

namespace {
std::mutex input_files_mutex;
std::set<std::filesystem::path> input_files;  ///< absolute: the working directory may change
}  // namespace

std::ifstream open_input_file(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  std::error_code ignored;
  if (!file.is_open() || std::filesystem::is_directory(name, ignored)) {
    fatal("Fatal error. Impossible to open file " + name + ".\n");
  }
  const std::lock_guard lock(input_files_mutex);
  input_files.insert(std::filesystem::absolute(name, ignored));
  return file;
}

bool is_input_file(const std::string& name) {
  std::error_code ignored;
  const std::lock_guard lock(input_files_mutex);
  return std::any_of(input_files.begin(), input_files.end(),
                     [&](const std::filesystem::path& input) {
                       return std::filesystem::equivalent(name, input, ignored);
                     });
}

std::string remove_extension(const std::string& name) { return name.substr(0, name.rfind('.')); }

std::string get_extension(const std::string& name) {
  const auto dot = name.rfind('.');
  return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string get_path(const std::string& name) { return name.substr(0, name.find_last_of("/\\")); }

void rename_old_file(const std::string& name) {
  // Intended: a name without extension keeps the dot ("out" becomes "out_old.").
  const std::string old_name = remove_extension(name) + "_old." + get_extension(name);
  [[maybe_unused]] const int ignored = std::rename(name.c_str(), old_name.c_str());
}

void write_and_display(std::ostream& log, const std::string& message) {
  if (Globals::displayMessage) {
    std::cout << message;
    flush_console();
  }
  log << message;
}

void print_delimitator(std::ostream& log) { log << std::string(49, '=') << '\n' << std::flush; }

}  // namespace utils
