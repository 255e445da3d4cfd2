#include "utils/files.hpp"

#include <stdio.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <mutex>

#include "utils/stop.hpp"

namespace utils {

namespace {
std::mutex input_files_mutex;
std::map<std::string, std::filesystem::path> input_files;  ///< absolute names, by identity
}  // namespace

std::string identity_of_file(const std::string& name) {
  struct stat status = {};
  if (stat(name.c_str(), &status) != 0) return "";
  return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

std::ifstream open_input_file(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  std::error_code ignored;
  if (!file.is_open() || std::filesystem::is_directory(name, ignored)) {
    fatal("Fatal error. Impossible to open file " + name + ".\n");
  }
  note_input_file(name);
  return file;
}

void note_input_file(const std::string& name) {
  const std::string identity = identity_of_file(name);
  const std::lock_guard lock(input_files_mutex);
  std::error_code ignored;
  if (!identity.empty()) input_files[identity] = std::filesystem::absolute(name, ignored);
}

bool is_input_file(const std::string& name) {
  const std::string identity = identity_of_file(name);
  const std::lock_guard lock(input_files_mutex);
  const auto input = input_files.find(identity);
  // The identity of a file that is gone may have become that of a new one.
  return input != input_files.end() && identity_of_file(input->second.string()) == identity;
}

std::string name_of_descriptor(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}

std::string readable_again(const std::string& name) {
  std::error_code ignored;
  if (!std::filesystem::is_fifo(name, ignored)) return name;
  std::FILE* const copy = std::tmpfile();
  if (copy == nullptr) return name;
  const std::string copy_name = name_of_descriptor(fileno(copy));
  std::ifstream pipe(name, std::ios::binary);
  std::ofstream(copy_name, std::ios::binary) << pipe.rdbuf();
  return copy_name;
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

void write_and_display(std::ostream& log, Console& console, const std::string& message) {
  console.show(message);
  log << message;
}

void print_delimitator(std::ostream& log) { log << std::string(49, '=') << '\n' << std::flush; }

}  // namespace utils
