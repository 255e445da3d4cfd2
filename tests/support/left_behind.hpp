// What a program that is ended from outside leaves behind: its processes, its temporary files.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"

namespace support {

/// Whether a condition holds within half a minute.
inline bool comes_true(const std::function<bool()>& condition) {
  using Clock = std::chrono::steady_clock;
  for (const auto start = Clock::now(); Clock::now() - start < std::chrono::seconds(30);) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return condition();
}

/// The command lines, with zeros between their words, of the processes whose environment holds a
/// text.
inline std::vector<std::string> processes_with(const std::string& text) {
  const auto bytes_of = [](const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  };
  std::vector<std::string> found;
  std::error_code ignored;
  for (std::filesystem::directory_iterator i("/proc", ignored), end; i != end;
       i.increment(ignored)) {
    if (contains(bytes_of(i->path() / "environ"), text)) {
      found.push_back(bytes_of(i->path() / "cmdline"));
    }
  }
  return found;
}

/// Starts a program with a folder for its temporary files, which is empty at first, and sends it a
/// signal once `is_under_way` says so of that folder: then neither a process nor a file stays.
inline void expect_nothing_left_behind(
    const TemporaryFolder& folder, const std::vector<std::string>& program_and_arguments,
    int signal, const std::function<bool(const std::filesystem::path&)>& is_under_way) {
  const std::filesystem::path place = folder.file("temporary " + std::to_string(signal));
  std::filesystem::create_directory(place);
  std::vector<std::string> words = {"TMPDIR=" + place.string()};
  words.insert(words.end(), program_and_arguments.begin(), program_and_arguments.end());
  RunOptions options;
  options.program = "/usr/bin/env";
  std::signal(signal, SIG_DFL);  // should these tests have been started to ignore it
  RunningProgram program(folder.path(), words, options);
  EXPECT_TRUE(comes_true([&] { return is_under_way(place); }));
  program.send(signal);
  EXPECT_EQ(program.wait().signal, signal);
  EXPECT_TRUE(comes_true([&] { return processes_with(place.string()).empty(); }));
  EXPECT_TRUE(comes_true([&] { return std::filesystem::is_empty(place); }));
}

/// Whether a file of this name lies in a folder of the folder.
inline bool has_file_below(const std::filesystem::path& place, const std::string& name) {
  std::error_code ignored;
  for (std::filesystem::directory_iterator i(place, ignored), end; i != end; i.increment(ignored)) {
    if (std::filesystem::exists(i->path() / name, ignored)) return true;
  }
  return false;
}

}  // namespace support
