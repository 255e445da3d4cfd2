#include "case/planned_files.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <string_view>
#include <system_error>

#include "case/CollectingSource.hpp"
#include "case/keys.hpp"
#include "case/read_requests.hpp"
#include "utils/files.hpp"
#include "utils/json_file.hpp"
#include "utils/snapshot_name.hpp"

namespace cases {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// A file that can be read twice, which a pipe cannot; behind its byte-order mark if it has one.
std::ifstream open_regular_file(const std::string& name) {
  std::error_code ignored;
  if (!fs::is_regular_file(name, ignored)) return {};
  std::ifstream file(name, std::ios::binary);
  std::array<char, 3> mark{};
  file.read(mark.data(), mark.size());
  if (std::string_view(mark.data(), mark.size()) == "\xEF\xBB\xBF") return file;
  file.clear();
  file.seekg(0);
  return file;
}

/// The text under a key; empty if there is none.
std::string text_at(const json& document, const Key& key) {
  const json::json_pointer pointer("/" + std::string(key.path));
  if (!document.contains(pointer) || !document.at(pointer).is_string()) return "";
  return document.at(pointer).get<std::string>();
}

json document_of(const std::string& data_file) {
  std::ifstream stream = open_regular_file(data_file);
  try {
    return utils::parse_json(stream, data_file);
  } catch (const std::exception&) {
    return {};
  }
}

/// The run itself will say what is wrong.
class Unheard : public Diagnostics {
 public:
  void error(const std::string&) override {}
  void warn(const std::string&) override {}
};

/// What `read(source)` makes of a file that can be read twice, as far as it can be read.
template <class Read>
auto request_of(const std::string& file, const Read& read) {
  std::error_code ignored;
  Unheard unheard;
  CollectingSource source(fs::is_regular_file(file, ignored) ? file : "", unheard);
  return read(source);
}

std::set<std::string> snapshot_names(const std::string& file, const std::string& folder) {
  std::set<std::string> names;
  for (const double time : request_of(file, read_snapshots<CollectingSource>).times) {
    if (std::isnan(time)) break;
    names.insert(folder + utils::snapshot_name(time));
  }
  return names;
}

/// The time series that an edges file names: its words that are no numbers and that lead to a file.
/// A mesh has millions of edges and a few such words; a file with many words that lead to no file
/// is no edges file, and is not read to its end.
std::set<std::string> series_names(const std::string& edges_file, const fs::path& folder) {
  constexpr int most_that_lead_nowhere = 10;
  int leading_nowhere = 0;
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
      const std::string name = (folder / std::string(begin, end)).string();
      std::error_code ignored;
      if (names.count(name) == 0 && !fs::exists(name, ignored)) {
        if (++leading_nowhere > most_that_lead_nowhere) return names;
      } else {
        names.insert(name);
      }
      at = std::find_if(end, line.end(), is_strange);
    }
  }
  return names;
}

/// Names every file in one way, whether it exists or not, so that two names of one file are seen.
class Identities {
 public:
  /// Empty for what cannot be destroyed, like a device.
  std::string of(const std::string& name) {
    std::error_code ignored;
    const std::string identity = utils::identity_of_file(name);
    if (!identity.empty()) return fs::is_regular_file(name, ignored) ? identity : "";
    if (fs::is_symlink(name, ignored)) return fs::weakly_canonical(name, ignored).string();
    const fs::path path(name);
    return (folder_of(path) / path.filename()).string();
  }

 private:
  /// Thousands of snapshots lie in one folder: it is looked for once.
  const fs::path& folder_of(const fs::path& path) {
    const auto [known, is_new] = folders_.try_emplace(path.parent_path().string());
    std::error_code ignored;
    if (is_new) {
      known->second =
          fs::weakly_canonical(fs::absolute(path.parent_path() / ".", ignored), ignored);
    }
    return known->second;
  }

  std::map<std::string, fs::path> folders_;
};

}  // namespace

PlannedFiles plan_files(const std::string& data_file, const std::string& report,
                        const std::string& folder) {
  const json document = document_of(data_file);
  const auto named = [&](const Key& key) {
    const std::string name = text_at(document, key);
    return name.empty() ? name : (fs::path(folder) / name).string();
  };
  PlannedFiles files;
  files.inputs.push_back(data_file);
  for (const Key& key : keys) {
    if (key.kind == KeyKind::file) files.inputs.push_back(named(key));
  }
  std::erase(files.inputs, "");
  const std::set<std::string> series = series_names(named(key("mesh/edges")), folder);
  files.inputs.insert(files.inputs.end(), series.begin(), series.end());

  const auto in_folder = [&](const std::string& name) {
    return (fs::path(folder) / name).string();
  };
  const std::string results = text_at(document, key("output/folder"));
  const std::string prefix = folder.empty() ? results : folder + "/" + results;
  files.results = {{"the log", in_folder("log.txt"), false},
                   {"the envelope", prefix + "enveloppe.txt", true}};
  if (!report.empty()) {
    files.results.push_back({"the report", report, true});
    files.results.push_back({"the snapshot of a failure", prefix + "failure.txt", true});
  }
  const std::string maxima = text_at(document, key("output/maxima of flow/file"));
  if (!maxima.empty()) files.results.push_back({"the maxima", prefix + maxima, true});
  const std::string final_state = text_at(document, key("output/final state"));
  if (!final_state.empty()) {
    files.results.push_back({"the final state", prefix + final_state, true});
  }
  for (const std::string& name : snapshot_names(named(key("output/snapshots of flow")), prefix)) {
    files.results.push_back({"the snapshot", name, true});
  }
  const std::string growing = text_at(document, key("output/results"));
  if (!growing.empty()) files.results.push_back({"the results", prefix + growing, true});
  const std::string gauges =
      request_of(named(key("output/gauges")), read_gauges<CollectingSource>).result;
  if (!gauges.empty()) files.results.push_back({"the gauges", prefix + gauges, false});
  const auto read_any_edges = [](CollectingSource& file) {
    return read_sections(file, std::numeric_limits<Number>::max());
  };
  const std::string sections = request_of(named(key("output/discharges")), read_any_edges).result;
  if (!sections.empty()) files.results.push_back({"the sections", in_folder(sections), false});
  return files;
}

std::vector<std::string> conflicts_of(const PlannedFiles& files) {
  Identities identities;
  std::map<std::string, std::string> inputs;
  for (const std::string& name : files.inputs) inputs.emplace(identities.of(name), name);
  inputs.erase("");

  std::vector<std::string> conflicts;
  std::map<std::string, std::string> results;  // by identity, what messages call them
  const auto add = [&](const std::string& called, const std::string& name) {
    const std::string identity = identities.of(name);
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

}  // namespace cases
