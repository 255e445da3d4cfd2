#include "export/plot_command.hpp"

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "export/MaximaTable.hpp"
#include "export/SnapshotReader.hpp"
#include "export/csv_writer.hpp"
#include "export/quantities.hpp"
#include "export/raster.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/child_process.hpp"
#include "support/read_file.hpp"

namespace exports {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using What = PlotOptions::What;

constexpr double pixels_along_a_map = 1600.0;

/// A folder that lives as long as the drawing: the job and the arrays that the script reads, and
/// the pictures that it draws.
class DrawingFolder {
 public:
  /// An empty "matplotlibrc" in the working folder of the script is read in place of any other one.
  DrawingFolder() { save("matplotlibrc", std::string()); }

  std::string path() const { return folder_.path(); }
  std::string path(const std::string& name) const { return folder_.file(name); }
  template <class T>
  void save(const std::string& name, const T& values) const {
    std::ofstream file(path(name), std::ios::binary);
    file.write(reinterpret_cast<const char*>(values.data()),
               static_cast<std::streamsize>(values.size() * sizeof(values[0])));
    if (!file.flush()) {
      throw tools::Error("The file " + path(name) + " couldn't be written (is the disk full?).");
    }
  }

 private:
  tools::TemporaryFolder folder_;
};

/// Coordinates x1 y1 x2 y2 of edges.
json lines_of(const std::vector<int>& numbers, const Edges& edges, const CaseResults& results) {
  json lines = json::array();
  for (const int number : numbers) {
    if (number < 0 || static_cast<std::size_t>(number) >= edges.nodes.size()) {
      throw tools::Error("Error in file " + results.files.sections.value_or("") + ": found edge " +
                         std::to_string(number) + ", expected an index from 0 to " +
                         std::to_string(static_cast<long>(edges.nodes.size()) - 1) + ".");
    }
    json line = json::array();
    for (const int node : edges.nodes[static_cast<std::size_t>(number)]) {
      const auto n = static_cast<std::size_t>(node);
      line.push_back({results.mesh.x[n], results.mesh.y[n]});
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

/// What all maps share: terrain, outline, pixels, and where gauges and sections are.
json describe_mesh(const CaseResults& results, const DrawingFolder& folder) {
  const Mesh& mesh = results.mesh;
  const Extent extent = extent_of(mesh);
  const double length = std::max(extent.east - extent.west, extent.north - extent.south);
  const Grid grid = grid_over(extent, length > 0.0 ? length / pixels_along_a_map : 1.0);
  const Triangulation triangles = triangulate(mesh);
  folder.save("x", mesh.x);
  folder.save("y", mesh.y);
  folder.save("terrain", results.node_bed());
  folder.save("triangles", triangles.nodes);
  folder.save("triangle_cells", triangles.cell);
  folder.save("pixels", rasterize(mesh, triangles, grid));

  const Edges edges = read_edges(results.files.edges, mesh);
  json places = {{"outline", lines_of(edges.boundary, edges, results)},
                 {"sections", json::array()},
                 {"gauges", json::array()}};
  if (results.files.sections) {
    for (const auto& section : read_section_list(results.files).sections) {
      places["sections"].push_back(lines_of(section, edges, results));
    }
  }
  if (results.files.gauges) {
    for (const auto& [x, y] : read_gauge_list(results.files).points) {
      places["gauges"].push_back({x, y});
    }
  }
  places["grid"] = {{"west", grid.west},
                    {"north", grid.north},
                    {"resolution", grid.resolution},
                    {"columns", grid.columns},
                    {"rows", grid.rows}};
  places["extent"] = {extent.west, extent.east, extent.south, extent.north};
  return places;
}

/// The pictures of one call, as the script reads them.
class Job {
 public:
  Job(const CaseResults& results, const PlotOptions& options)
      : results_(results),
        options_(options),
        dry_depth_(options.dry_depth.value_or(results.files.dry_depth)),
        job_({{"case", results.files.title},
              {"title", options.title},
              {"maps", json::array()},
              {"curves", json::array()}}) {}

  void add_map(const MapField& field, const std::string& name) {
    const std::string values = "values_" + std::to_string(job_["maps"].size());
    folder_.save(values, field.values);
    json map = {{"name", field.name},
                {"long_name", field.long_name},
                {"unit", field.unit},
                {"values", values},
                {"picture", add_output(name)}};
    if (field.time) map["time"] = *field.time;
    below_zero_.add(field.below_zero);
    if (!options_.classes.empty()) map["classes"] = options_.classes;
    job_["maps"].push_back(std::move(map));
  }
  void add_map(const std::string& field) {
    const MapField values = read_map_field(results_, field, options_.time, dry_depth_);
    add_map(values, file_stem(values));
  }
  void add_gauges() {
    write_gauges_csv(results_.files, folder_.path("gauges.csv"));
    add_curves("gauges");
  }
  void add_sections() {
    write_sections_csv(results_.files, folder_.path("sections.csv"));
    add_curves("sections");
  }
  /// What a report wants: the envelope, every snapshot, every curve, of what the case has.
  void add_all() {
    if (results_.has_envelope()) {
      add_map("max_depth");
      if (!results_.files.has_sediment) add_map("max_level");
    }
    if (results_.has_maxima()) {
      const MaximaTable maxima = read_maxima(results_);
      for (const MaximaQuantity& quantity : maxima_quantities) {
        add_map(map_field(maxima, quantity, dry_depth_), quantity.name);
      }
    }
    Snapshot snapshot;
    for (const SnapshotFile& file : results_.snapshots) {
      read_snapshot(results_, file, snapshot);
      for (const char* name : {"depth", "level", "velocity", "bed_change"}) {
        if (std::string(name) == "bed_change" && !results_.files.has_sediment) continue;
        const MapField field = map_field(results_, snapshot, name, dry_depth_);
        add_map(field, file_stem(field));
      }
    }
    if (results_.files.gauges) add_gauges();
    if (results_.files.sections) add_sections();
    if (outputs_.empty()) {
      throw tools::Error("No result of " + results_.files.data_file +
                         " is there. Has the case been run?");
    }
  }

  std::vector<std::string> draw() {
    if (!job_["maps"].empty()) job_["mesh"] = describe_mesh(results_, folder_);
    folder_.save("job.json", job_.dump(-1, ' ', false, json::error_handler_t::replace));
    run_script(folder_);
    for (std::size_t i = 0; i < outputs_.size(); ++i) put_in_place(picture(i), outputs_[i]);
    below_zero_.tell();
    return outputs_;
  }

 private:
  /// Name of the picture in the folder of the drawing.
  std::string picture(std::size_t index) const {
    return "picture_" + std::to_string(index) + "." + options_.format;
  }
  /// Copies a picture: a file of the user's is only ever replaced by a complete one.
  void put_in_place(const std::string& picture, const std::string& output) const {
    const std::string bytes = tools::read_file(folder_.path(picture));
    tools::PartialStream file(output);
    file.stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.commit();
  }

  /// Adds a picture, refusing early what could not be written; its name for the script.
  std::string add_output(const std::string& name) {
    const std::string file = name + "." + options_.format;
    if (options_.what == What::all) {
      const std::string folder =
          options_.output.empty() ? results_.files.export_path("pictures") : options_.output;
      outputs_.push_back((fs::path(folder) / file).string());
    } else {
      outputs_.push_back(options_.output.empty() ? results_.files.export_path(file)
                                                 : options_.output);
    }
    tools::prepare_place(outputs_.back());
    return picture(outputs_.size() - 1);
  }

  void add_curves(const std::string& kind) {
    job_["curves"].push_back(
        {{"kind", kind}, {"table", kind + ".csv"}, {"picture", add_output(kind)}});
  }

  /// The script has its place beside the program: ../share/quillmere from the program's folder, in
  /// the build tree and where it is installed.
  static void run_script(const DrawingFolder& folder) {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const std::string script =
        (program.parent_path().parent_path() / "share" / "quillmere" / "draw_results.py").string();
    if (error || !fs::exists(script)) {
      throw tools::Error("The script " + script + ", which draws, is not there.");
    }
    const pid_t child = tools::fork_child("for the drawing script");
    if (child == 0) {
      unsetenv("MPLBACKEND");
      // -I: only Python's own places are searched for modules, whatever lies in the user's folders.
      if (chdir(folder.path().c_str()) == 0) {
        execl(QUILLMERE_PYTHON, QUILLMERE_PYTHON, "-I", "-B", script.c_str(),
              static_cast<char*>(nullptr));
      }
      _exit(127);
    }
    const int state = tools::wait_for(child);
    if (WIFSIGNALED(state)) {
      throw tools::Error(std::string("Drawing was ended by a signal: ") +
                         strsignal(WTERMSIG(state)) + ".");
    }
    if (WEXITSTATUS(state) == 127) {
      throw tools::Error("Python is not there as " QUILLMERE_PYTHON
                         ". Install it (Debian: python3-matplotlib).");
    }
    if (WEXITSTATUS(state) != 0) {
      throw tools::Error("Drawing failed; what went wrong stands above.");
    }
  }

  const CaseResults& results_;
  const PlotOptions& options_;
  double dry_depth_;
  DrawingFolder folder_;
  json job_;
  std::vector<std::string> outputs_;
  BelowZero below_zero_;
};

}  // namespace

std::vector<std::string> plot(const CaseResults& results, const PlotOptions& options) {
  Job job(results, options);
  switch (options.what) {
    case What::map:
      job.add_map(options.field);
      break;
    case What::gauges:
      job.add_gauges();
      break;
    case What::sections:
      job.add_sections();
      break;
    case What::all:
      job.add_all();
      break;
  }
  return job.draw();
}

}  // namespace exports
