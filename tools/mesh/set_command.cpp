#include "mesh/set_command.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "case/cell_files.hpp"
#include "case/data_file_text.hpp"
#include "case/read_case.hpp"
#include "case/read_requests.hpp"
#include "case/schemes.hpp"
#include "case/write_case.hpp"
#include "mesh/boundaries.hpp"
#include "mesh/case_writer.hpp"
#include "mesh/fields.hpp"
#include "mesh/import_run.hpp"
#include "mesh/imposed_values.hpp"
#include "mesh/numbers.hpp"
#include "mesh/spread.hpp"
#include "mesh/units.hpp"
#include "support/CaseNames.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "utils/TextScanner.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

namespace fs = std::filesystem;

constexpr char keys_text[] =
    "end=TIME, interval=TIME, cfl=NUMBER, zero-depth=DEPTH, friction=NUMBER, scheme=NAME, "
    "name=TEXT, boundary.NAME=KIND and spread.NAME=LEVEL|even, as import takes them";

/// What the command line asks for.
struct Changes {
  std::optional<double> end, interval;  // s
  std::optional<double> courant, zero_depth, friction;
  const cases::SchemeKind* scheme = nullptr;
  std::optional<std::string> name;
  BoundaryRequests boundaries;
};

[[noreturn]] void refuse_change(const std::string& text, const std::string& expected) {
  throw CLI::ValidationError("set", "found \"" + text + "\", expected " + expected);
}

/// Series count from the working directory of the user, which is not that of the case.
BoundaryRequest boundary_of_text(const std::string& text) {
  BoundaryRequest request = parse_boundary(text);
  if (!request.file.empty()) request.file = fs::absolute(request.file).string();
  return request;
}

const cases::SchemeKind* parse_scheme(const std::string& text, const std::string& name) {
  const cases::SchemeKind* const scheme = cases::find_scheme(name);
  if (scheme != nullptr) return scheme;
  std::vector<std::string> names;
  for (const cases::SchemeKind& kind : cases::schemes) names.emplace_back(kind.name);
  refuse_change(text, "one of " + list_of_names(names));
}

void parse_change(const std::string& text, Changes& changes) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) refuse_change(text, std::string("one of ") + keys_text);
  const std::string key = text.substr(0, equals), value = text.substr(equals + 1);
  const auto positive = [&](std::optional<double> found, const char* expected) {
    if (!found || !(*found > 0.0)) refuse_change(text, expected);
    return found;
  };
  const auto number = [&] {
    return positive(utils::parse_finite_number(value), "a number above 0");
  };
  const auto time = [&] {
    return positive(parse_duration(value), "a time above 0, as in 600, 10min or 2h");
  };
  const std::string boundary = "boundary.", spread = "spread.";
  if (key == "end") {
    changes.end = time();
  } else if (key == "interval") {
    changes.interval = time();
  } else if (key == "cfl") {
    changes.courant = number();
  } else if (key == "zero-depth") {
    changes.zero_depth = number();
  } else if (key == "friction") {
    changes.friction = number();
  } else if (key == "scheme") {
    changes.scheme = parse_scheme(text, value);
  } else if (key == "name") {
    changes.name = value;
  } else if (key.starts_with(boundary)) {
    changes.boundaries.conditions.push_back(boundary_of_text(text.substr(boundary.size())));
  } else if (key.starts_with(spread)) {
    changes.boundaries.spreads.push_back(parse_spread(text.substr(spread.size())));
  } else {
    refuse_change(text, std::string("one of ") + keys_text);
  }
}

class FirstError : public cases::Diagnostics {
 public:
  void error(const std::string& message) override { throw tools::Error(message); }
  void warn(const std::string&) override {}  // check says it
};

/// A case that is read, and the files of it that are written anew.
class ChangedCase {
 public:
  explicit ChangedCase(const std::string& folder) {
    std::error_code error;
    fs::current_path(folder, error);
    if (error) throw tools::Error("the folder " + folder + " can't be entered: " + error.message());
    FirstError diagnostics;
    read_ = cases::read_case(cases::data_file_name, cases::NoListeners().listeners(), diagnostics);
    std::ifstream file(cases::data_file_name, std::ios::binary);
    data_ = nlohmann::ordered_json::parse(file);
  }

  void apply(const Changes& changes, std::ostream& out) {
    if (changes.name) set("name", *changes.name);
    if (changes.courant) set("CFL", *changes.courant);
    if (changes.zero_depth) set("model/zero depth value", *changes.zero_depth);
    if (changes.friction) set_friction(*changes.friction);
    if (changes.scheme != nullptr) set_scheme(*changes.scheme);
    set_boundaries(changes.boundaries, out);
    if (changes.end || changes.interval) set_times(changes, out);
  }

  /// Puts all changed files in their places, the data file last, when all of them are complete.
  void write() {
    std::map<std::string, std::string> texts;
    cases::write_case(read_.contents, run_, [&](const std::string& name, const std::string& text) {
      if (changed_.count(name) > 0) texts[name] = text;  // of two series of a name the later one
    });
    std::vector<std::string> names;
    for (const auto& [name, text] : texts) names.push_back(write_beside(changed_[name], text));
    names.push_back(write_beside(cases::data_file_name, data_.dump(2) + "\n"));
    for (const std::string& name : names) {
      std::error_code error;
      fs::rename(name + suffix, name, error);
      if (error) throw tools::Error(name + ": the file cannot be replaced: " + error.message());
    }
  }

 private:
  static constexpr char suffix[] = ".changed";

  static std::string write_beside(const std::string& name, const std::string& text) {
    tools::PartialStream file(name + suffix);
    file.stream().write(text.data(), static_cast<std::streamsize>(text.size()));
    file.commit();
    return name;
  }

  template <class T>
  void set(const std::string& path, const T& value) {
    data_[nlohmann::ordered_json::json_pointer("/" + path)] = value;
  }

  void set_scheme(const cases::SchemeKind& scheme) {
    if (read_.contents.has_sediments && !scheme.with_sediments) {
      throw tools::Error(std::string("scheme=") + scheme.name +
                         ": the model with sediments has no such scheme; expected LHLLC or " +
                         cases::positive_scheme(true).name + ".");
    }
    set("model/flux scheme", scheme.name);
  }

  void set_friction(double value) {
    constexpr const cases::Key& key = cases::key("model/conditions/friction");
    const std::string default_name = cases::cell_file(key)->name;
    const std::string* const name = read_.data.cell_files.find(key);
    cases::Case& contents = read_.contents;
    contents.fields.manning.assign(cases::at(contents.mesh.n_cells()), value);
    if (contents.has_sediments) set("model/parameters/sediments friction coefficient", value);
    set(std::string(key.path), name != nullptr ? *name : default_name);
    changed_[default_name] = name != nullptr ? *name : default_name;
  }

  void set_boundaries(const BoundaryRequests& requests, std::ostream& out) {
    if (requests.conditions.empty() && requests.spreads.empty()) return;
    cases::Case& contents = read_.contents;
    Case imported = imported_case();
    std::vector<cases::Boundary> others;
    std::set<std::string> taken = files_of_others(requests, imported, others);
    for (const BoundaryRequest& request : requests.conditions) {
      Boundary& boundary = imported.boundaries.list[index_of(request.name, imported)];
      const Boundary before = boundary;
      if (contents.has_sediments && !request.kind->with_sediments) {
        throw tools::Error("boundary." + request.name + "=" + request.kind->name +
                           ": the model with sediments has no such boundary; expected " +
                           forms_of_boundaries(true) + ".");
      }
      boundary = boundary_of(request, taken);
      boundary.n_edges = before.n_edges;
      boundary.length = before.length;
    }
    spread_discharges(requests.spreads, imported, out);
    contents.mesh.boundaries = std::move(others);
    const std::size_t n_series = contents.series.size();
    impose(imported.boundaries, contents);
    auto& conditions = contents.mesh.boundaries;
    std::sort(conditions.begin(), conditions.end(),
              [](const auto& a, const auto& b) { return a.edge < b.edge; });
    for (std::size_t i = n_series; i < contents.series.size(); ++i) {
      changed_[contents.series[i].file] = contents.series[i].file;
    }
    changed_[cases::edges_file_name] = read_.data.edges;
    out << boundary_table(imported.boundaries);
  }

  static std::size_t index_of(const std::string& name, const Case& imported) {
    const auto& list = imported.boundaries.list;
    return static_cast<std::size_t>(
        std::find_if(list.begin(), list.end(),
                     [&](const Boundary& boundary) { return boundary.name == name; }) -
        list.begin());
  }

  /// The boundaries of the requests with their edges; the conditions of all others, and the files
  /// of their series.
  std::set<std::string> files_of_others(const BoundaryRequests& requests, Case& imported,
                                        std::vector<cases::Boundary>& others) const {
    const auto named = tools::read_case_names(".").boundaries;
    std::vector<std::string> names;
    for (const auto& [name, edges] : named) names.push_back(name);
    const cases::Case& contents = read_.contents;
    std::vector<int>& of_edge = imported.boundaries.of_edge;
    of_edge.assign(contents.mesh.left.size(), -1);
    for (const BoundaryRequest& request : requests.conditions) {
      const auto found = named.find(request.name);
      if (found == named.end()) {
        throw tools::Error("boundary." + request.name +
                           ": the case has no boundary of this name; " +
                           "it has: " + list_of_names(names) + ".");
      }
      Boundary boundary;
      boundary.name = request.name;
      for (const int edge : found->second) {
        if (edge < 0 || edge >= contents.mesh.n_edges() ||
            contents.mesh.boundary_on(edge) == nullptr) {
          throw tools::Error(std::string(tools::names_file_name) + ": edge " +
                             std::to_string(edge) + " of \"" + request.name +
                             "\" is none of the boundary; expected the file of this case.");
        }
        of_edge[cases::at(edge)] = static_cast<int>(imported.boundaries.list.size());
        ++boundary.n_edges;
        boundary.length += contents.mesh.edge_of(edge).length;
      }
      imported.boundaries.list.push_back(boundary);
    }
    std::set<std::string> files;
    for (const cases::Boundary& condition : contents.mesh.boundaries) {
      if (of_edge[cases::at(condition.edge)] >= 0) continue;
      others.push_back(condition);
      if (condition.series >= 0) files.insert(contents.series[cases::at(condition.series)].file);
    }
    return files;
  }

  /// What the spreading of discharges needs of the case.
  Case imported_case() const {
    const cases::Case& contents = read_.contents;
    const cases::Mesh& mesh = contents.mesh;
    Case imported;
    for (std::size_t i = 0; i < mesh.x.size(); ++i) {
      imported.mesh.nodes.push_back({mesh.x[i], mesh.y[i], mesh.z[i]});
    }
    for (cases::Number i = 0; i < mesh.n_cells(); ++i) {
      const auto nodes = mesh.nodes_of(i);
      Cell cell;
      std::copy_n(nodes.begin(), std::min(nodes.size(), cell.nodes.size()), cell.nodes.begin());
      imported.mesh.cells.push_back(cell);
    }
    for (std::size_t i = 0; i < mesh.left.size(); ++i) {
      imported.edges.push_back({mesh.left[i], mesh.right[i], mesh.node1[i], mesh.node2[i]});
    }
    imported.level = contents.fields.level;
    imported.bed = contents.fields.bed;
    imported.friction = contents.fields.manning;
    imported.sediment = contents.fields.sediment;
    return imported;
  }

  void set_times(const Changes& changes, std::ostream& out) {
    const cases::DataFile& data = read_.data;
    if (read_.contents.t_start != 0.0) {
      throw tools::Error(std::string(cases::data_file_name) + ": the case begins at " +
                         shown(read_.contents.t_start) +
                         " s; times can be set of one that begins at 0.");
    }
    Case planned;
    planned.end = changes.end.value_or(read_.contents.t_end);
    set_outputs(interval_of(changes), planned, out);
    set("tend", planned.end);
    set("output/time step enveloppe of results", planned.envelope_interval);
    const double interval = as_written(planned.recording_interval);
    if (data.pictures) {
      run_.snapshots = {all_as_written(planned.snapshots)};
      changed_[cases::snapshots_file_name] = *data.pictures;
    }
    if (data.gauges) {
      utils::TextScanner file(*data.gauges);
      run_.gauges = cases::read_gauges(file);
      run_.gauges->interval = interval;
      changed_[cases::gauges_file_name] = *data.gauges;
    }
    if (data.discharges) {
      utils::TextScanner file(*data.discharges);
      run_.sections = cases::read_sections(file, read_.contents.mesh.n_edges());
      run_.sections->interval = interval;
      changed_[cases::sections_file_name] = *data.discharges;
    }
  }

  /// What is asked for, or else the time between the first two snapshots.
  std::optional<double> interval_of(const Changes& changes) const {
    if (changes.interval || !read_.data.pictures) return changes.interval;
    utils::TextScanner file(*read_.data.pictures);
    const std::vector<double> times = cases::read_snapshots(file).times;
    if (times.size() < 3) return std::nullopt;
    return times[1] - times[0];
  }

  cases::ReadCase read_;
  nlohmann::ordered_json data_;
  cases::RunRequest run_;                       // the outputs that are written anew
  std::map<std::string, std::string> changed_;  // files, by their names in a new case
};

struct SetOptions {
  std::string folder;
  std::vector<std::string> changes;
};

void set_values(const SetOptions& options, std::ostream& out) {
  Changes changes;
  for (const std::string& text : options.changes) parse_change(text, changes);
  ChangedCase changed(options.folder);
  changed.apply(changes, out);
  changed.write();
  out << "The case is changed; results that are there are those before.\n";
}

}  // namespace

}  // namespace mesh_import

void add_set_command(CLI::App& app) {
  const auto options = std::make_shared<mesh_import::SetOptions>();
  CLI::App* const command =
      app.add_subcommand("set",
                         "Examples:\n"
                         "  quillmere-mesh set valley boundary.inflow=discharge:-40m3/s end=2h\n"
                         "  quillmere-mesh set valley friction=0.035\n"
                         "\n"
                         "Changes values of a case without a new import. The names of boundaries "
                         "are those that import\n"
                         "kept in names.json.");
  command->add_option("CASE", options->folder, "Folder of the case")->required();
  command->add_option("KEY=VALUE", options->changes, mesh_import::keys_text)->required();
  command->callback([options] { mesh_import::set_values(*options, std::cout); });
}
