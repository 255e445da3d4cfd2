#include "utils/planned_files.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <system_error>

#include "utils/json_file.hpp"
#include "utils/known_keys.hpp"
#include "utils/number_text.hpp"
#include "utils/snapshot_name.hpp"

namespace utils {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A file that can be read twice; a pipe cannot.
std::ifstream open_regular_file(const std::string& name) {
  std::error_code ignored;
  return fs::is_regular_file(name, ignored) ? std::ifstream(name, std::ios::binary)
                                            : std::ifstream();
}

/// The text under a path like "mesh/nodes"; empty if there is none.
std::string text_at(const json& document, const std::string& path) {
  const json::json_pointer pointer("/" + path);
  if (!document.contains(pointer) || !document.at(pointer).is_string()) return "";
  return document.at(pointer).get<std::string>();
}

json document_of(const std::string& data_file) {
  std::ifstream stream = open_regular_file(data_file);
  try {
    return parse_json(stream, data_file);
  } catch (const std::exception&) {
    return {};
  }
}

/// A word of the beginning of a file, counted from 0.
std::string word_of(const std::string& file, int number) {
  std::ifstream stream = open_regular_file(file);
  std::string word;
  for (int i = 0; i <= number; ++i) {
    if (!(stream >> word)) return "";
  }
  return word;
}

std::vector<std::string> snapshot_names(const std::string& file, const std::string& folder) {
  std::ifstream stream = open_regular_file(file);
  std::set<std::string> names;
  std::string word;
  double count = 0.0, time = 0.0;
  if (!(stream >> word) || !parse_number(word, count)) return {};
  for (double i = 0.0; i < count && stream >> word; ++i) {
    if (!parse_number(word, time) || !std::isfinite(time)) break;
    names.insert(folder + snapshot_name(time));
  }
  return {names.begin(), names.end()};
}

/// The words of an edges file that are no numbers: the names of time series. A mesh has millions of
/// edges, and a few such words.
std::set<std::string> series_names(const std::string& edges_file) {
  static constexpr std::string_view of_numbers = "0123456789+-.eE \t\v\f\r";
  std::array<bool, 256> is_of_number{};
  for (const char c : of_numbers) is_of_number[static_cast<unsigned char>(c)] = true;

  std::set<std::string> names;
  std::ifstream stream = open_regular_file(edges_file);
  for (std::string line; std::getline(stream, line);) {
    const auto is_strange = [&](char c) { return !is_of_number[static_cast<unsigned char>(c)]; };
    auto at = std::find_if(line.begin(), line.end(), is_strange);
    while (at != line.end()) {
      const auto is_space = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
      const auto begin = std::find_if(std::make_reverse_iterator(at), line.rend(), is_space).base();
      const auto end = std::find_if(at, line.end(), is_space);
      names.emplace(begin, end);
      at = std::find_if(end, line.end(), is_strange);
    }
  }
  return names;
}

/// What tells a file from another one; empty for what cannot be destroyed, like a device.
std::string identity_of(const std::string& name) {
  struct stat status {};
  if (stat(name.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) return "";
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
  }
  std::error_code ignored;
  return fs::weakly_canonical(fs::absolute(name, ignored), ignored).string();
}

}  // namespace

PlannedFiles plan_files(const std::string& data_file, const std::string& report) {
  const json document = document_of(data_file);
  PlannedFiles files;
  files.inputs.push_back(data_file);
  for (const KnownKey& known : known_keys()) {
    if (known.type == KeyType::file) files.inputs.push_back(text_at(document, known.path()));
  }
  std::erase(files.inputs, "");
  const std::set<std::string> series =
      series_names(text_at(document, path_of(section::mesh, key::edges)));
  files.inputs.insert(files.inputs.end(), series.begin(), series.end());

  const auto output = [&](const char* name) {
    return text_at(document, path_of(section::output, name));
  };
  const std::string folder = output(key::folder);
  files.results = {{"the log", "log.txt", false}, {"the envelope", folder + "enveloppe.txt", true}};
  if (!report.empty()) {
    files.results.push_back({"the report", report, true});
    files.results.push_back({"the snapshot of a failure", folder + "failure.txt", true});
  }
  for (const std::string& name : snapshot_names(output(key::pictures), folder)) {
    files.results.push_back({"the snapshot", name, true});
  }
  if (const std::string name = word_of(output(key::gauges), 1); !name.empty()) {
    files.results.push_back({"the gauges", folder + name, false});
  }
  if (const std::string name = word_of(output(key::discharges), 2); !name.empty()) {
    files.results.push_back({"the sections", name, false});
  }
  return files;
}

std::vector<std::string> conflicts_of(const PlannedFiles& files) {
  std::map<std::string, std::string> inputs;
  for (const std::string& name : files.inputs) inputs.emplace(identity_of(name), name);
  inputs.erase("");

  std::vector<std::string> conflicts;
  std::map<std::string, std::string> results;  // by identity, what messages call them
  const auto add = [&](const std::string& called, const std::string& name) {
    const std::string identity = identity_of(name);
    if (identity.empty()) return;
    const auto input = inputs.find(identity);
    const auto [other, is_new] = results.emplace(identity, called);
    if (input != inputs.end()) {
      conflicts.push_back(called + " would replace an input file of this run (" + input->second +
                          ")");
    } else if (!is_new) {
      conflicts.push_back(called + " would replace another result of this run, " + other->second);
    }
  };
  for (const PlannedResult& result : files.results) {
    add(result.what + " (" + result.name + ")", result.name);
    if (!result.is_written_whole) continue;
    const std::string part = result.name + ".part";
    add(result.what + " (while it grows: " + part + ")", part);
  }
  return conflicts;
}

}  // namespace utils
