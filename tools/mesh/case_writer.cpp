#include "mesh/case_writer.hpp"

#include <filesystem>
#include <list>

#include "case/keys.hpp"
#include "case/write_case.hpp"
#include "mesh/earlier_results.hpp"
#include "mesh/imposed_values.hpp"
#include "mesh/numbers.hpp"
#include "support/CaseNames.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "utils/counted.hpp"

namespace mesh_import {

namespace {

namespace fs = std::filesystem;

cases::Mesh mesh_of(const Case& imported) {
  cases::Mesh mesh;
  for (const Node& node : imported.mesh.nodes) {
    mesh.x.push_back(as_written(node.x));
    mesh.y.push_back(as_written(node.y));
    mesh.z.push_back(as_written(node.z));
  }
  for (const Cell& cell : imported.mesh.cells) {
    mesh.add_cell({cell.nodes.data(), static_cast<std::size_t>(cell.size())});
  }
  for (const Edge& edge : imported.edges) {
    mesh.left.push_back(edge.left);
    mesh.right.push_back(edge.right);
    mesh.node1.push_back(edge.node1);
    mesh.node2.push_back(edge.node2);
  }
  return mesh;
}

cases::CellFields fields_of(const Case& imported) {
  cases::CellFields fields;
  fields.level = all_as_written(imported.level);
  fields.qx.assign(fields.level.size(), 0.0);
  fields.qy = fields.qx;
  fields.bed = all_as_written(imported.bed);
  fields.manning = all_as_written(imported.friction);
  fields.sediment = all_as_written(imported.sediment);
  fields.rain = imported.rain;
  fields.soil = imported.soil;
  return fields;
}

cases::Case case_of(const Case& imported) {
  cases::Case contents;
  contents.has_sediments = !imported.sediment.empty();
  contents.t_end = imported.end;
  contents.cfl = imported.courant;
  contents.scheme = imported.scheme;
  contents.zero_depth =
      imported.zero_depth.value_or(cases::default_number(cases::key("model/zero depth value")));
  contents.sediment = imported.sediments;
  if (contents.has_sediments) contents.sediment.manning = imported.friction.front();
  contents.mesh = mesh_of(imported);
  impose(imported.boundaries, contents);
  contents.fields = fields_of(imported);
  contents.rain = imported.hyetograms;
  contents.soils = imported.soils;
  return contents;
}

cases::RunRequest request_of(const Case& imported) {
  cases::RunRequest run;
  run.name = imported.name;
  run.output_folder = "out/";
  run.envelope_interval = imported.envelope_interval;
  run.epsg = imported.mesh.epsg;
  run.epoch = imported.epoch;
  if (imported.origin) run.origin = {imported.origin->x, imported.origin->y};
  run.maxima = {"maxima.txt", as_written(imported.arrival_depth)};
  run.final_state = "final.txt";
  run.snapshots = {all_as_written(imported.snapshots)};
  const double interval = as_written(imported.recording_interval);
  run.gauges = {"gauges.txt", interval, {}};
  for (const Gauge& gauge : imported.gauges) {
    run.gauges->points.push_back({as_written(gauge.place.x), as_written(gauge.place.y)});
  }
  if (imported.sections.empty()) return run;
  run.sections = {"out/sections.txt", interval, {}};
  for (const Section& section : imported.sections) run.sections->sections.push_back(section.edges);
  return run;
}

tools::CaseNames names_of(const Case& imported) {
  tools::CaseNames names;
  for (const Gauge& gauge : imported.gauges) names.gauges.push_back(gauge.name);
  for (const Section& section : imported.sections) names.sections.push_back(section.name);
  for (std::size_t edge = 0; edge < imported.edges.size(); ++edge) {
    const int boundary = imported.boundaries.of_edge[edge];
    if (boundary < 0) continue;
    const std::string& name = imported.boundaries.list[cases::at(boundary)].name;
    if (!name.empty()) names.boundaries[name].push_back(static_cast<int>(edge));
  }
  return names;
}

/// Files take their places together when all of them are complete, in the order in which they were
/// written: a case that was there stays as it was if one of them cannot be written.
class Folder {
 public:
  explicit Folder(const std::string& path) : path_(path) {
    std::error_code error;
    fs::create_directories(path_ / "out", error);
    if (error) {
      throw tools::Error(path + ": the folder cannot be created (" + error.message() + ").");
    }
  }

  void write(const std::string& name, const std::string& text) {
    std::error_code ignored;
    if (fs::exists(path_ / name, ignored)) names_there_.push_back(name);
    tools::PartialStream& file = files_.emplace_back(path_ / name);
    file.stream().write(text.data(), static_cast<std::streamsize>(text.size()));
    file.finish();
  }
  /// Refuses a folder in which files of these names are already.
  void expect_new() const {
    if (names_there_.empty()) return;
    std::string names;
    for (const std::string& name : names_there_) names += (names.empty() ? "" : ", ") + name;
    throw tools::Error(path_.string() + ": the case would replace " +
                       utils::counted(names_there_.size(), "file") + " of the folder: " + names +
                       "; expected a new folder, or --overwrite.");
  }
  /// From the first removal until all is in its place, there is no case that could run. The files
  /// are removed, as those that tell the results of the case that was there have been read: no file
  /// takes the place of one that was.
  void commit() {
    std::error_code ignored;
    fs::remove(path_ / cases::data_file_name, ignored);
    for (const std::string& name : names_there_) fs::remove(path_ / name, ignored);
    for (tools::PartialStream& file : files_) file.commit();
  }

 private:
  fs::path path_;
  std::vector<std::string> names_there_;
  std::list<tools::PartialStream> files_;
};

}  // namespace

std::size_t write_case(const Case& imported, const std::string& path, Overwrite overwrite) {
  Folder folder(path);
  cases::write_case(case_of(imported), request_of(imported),
                    [&](const std::string& name, const std::string& text) {
                      if (name == cases::data_file_name) {
                        folder.write(tools::names_file_name, tools::text_of(names_of(imported)));
                      }
                      const auto given = imported.given_texts.find(name);
                      folder.write(name,
                                   given != imported.given_texts.end() ? given->second : text);
                    });
  if (overwrite == Overwrite::no) folder.expect_new();
  const std::vector<fs::path> results = results_of_case(path);
  std::error_code error;
  for (const fs::path& name : results) {
    if (fs::remove(name, error) || !error) continue;
    throw tools::Error(name.string() + ": this result of the earlier case cannot be removed (" +
                       error.message() + ").");
  }
  folder.commit();
  return results.size();
}

}  // namespace mesh_import
