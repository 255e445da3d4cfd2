#include "mesh/import_command.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "globals/edge_codes.hpp"
#include "mesh/boundaries.hpp"
#include "mesh/case_writer.hpp"
#include "mesh/cells.hpp"
#include "mesh/edges.hpp"
#include "mesh/fields.hpp"
#include "mesh/mesh_file.hpp"
#include "mesh/numbers.hpp"
#include "mesh/run_options.hpp"
#include "mesh/sections.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

constexpr char examples[] = R"(Examples:
  quillmere-mesh import valley.msh valley --terrain dem.tif --friction 0.035 \
      --boundary inflow=hydrograph:flood.txt --boundary outflow=transmissive
  quillmere-mesh import basin.geo basin --level reservoir=100 --section gate
  quillmere-mesh import river.2dm river --friction 0.06 --friction channel=0.03 \
      --boundary 1=discharge:-2.5 --boundary 2=level:10
  cd valley && quillmere -f data.json

)";

struct Options {
  std::string mesh;
  std::string folder;
  std::string terrain;
  std::optional<double> fill;
  std::vector<std::string> boundaries;
  std::vector<std::string> friction, level, bed, sediment, rain, soil;
  std::string hyetograms, soils;
  std::vector<std::string> sections;
  double grain_diameter = std::numeric_limits<double>::quiet_NaN();
  double grain_density = 2.65;
  double porosity = 0.4;
  std::string name;
  std::vector<std::string> gauges;
  std::string snapshots;
  std::optional<double> end, interval, zero_depth;
  double courant = 0.9;
  bool keep_quads = false;
  bool overwrite = false;
};

[[noreturn]] void refuse_usage(const std::string& option, const std::string& message) {
  throw CLI::ValidationError(option, message);
}

/// What needs no file to be seen as wrong.
void check_usage(const Options& options) {
  if (options.fill && options.terrain.empty()) refuse_usage("--fill", "needs --terrain");
  if (!options.rain.empty() && options.hyetograms.empty()) {
    refuse_usage("--rain", "gives IDs of hyetograms: name their file with --hyetograms");
  }
  if (!options.soil.empty() && options.soils.empty()) {
    refuse_usage("--soil", "gives IDs of soils: name their file with --soils");
  }
  if (!options.sediment.empty() && !(options.grain_diameter > 0.0)) {
    refuse_usage("--sediment", "needs --grain-diameter, in m, above 0");
  }
  if (!options.sediment.empty() && options.friction.empty()) {
    refuse_usage("--sediment", "needs --friction: the flow carries no sediment over a smooth bed");
  }
  const auto check_positive = [](const char* option, double value) {
    if (!(value > 0.0) || !std::isfinite(value)) refuse_usage(option, "must be above 0");
  };
  check_positive("--end", options.end.value_or(1.0));
  check_positive("--interval", options.interval.value_or(1.0));
  check_positive("--cfl", options.courant);
  check_positive("--zero-depth", options.zero_depth.value_or(1.0));
}

std::string counted(std::size_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

class Import {
 public:
  Import(const Options& options, std::ostream& out) : options_(options), out_(out) {}

  void run() {
    check_usage(options_);
    std::vector<BoundaryRequest> requests;
    for (const auto& text : options_.boundaries) requests.push_back(parse_boundary(text));
    for (const auto& text : options_.gauges) case_.gauges.push_back(parse_gauge(text));
    if (!options_.snapshots.empty()) case_.snapshots = parse_snapshots(options_.snapshots);
    check_folder();
    read_mesh();
    set_terrain();
    case_.edges = make_edges(case_.mesh);
    const EdgeIndex index(case_.edges, case_.mesh.nodes.size());
    case_.boundaries = assign_boundaries(case_.mesh, case_.edges, index, requests);
    set_fields();
    check_sediment_boundaries();
    orient_edges(index);
    set_run();
    place_gauges();
    write_case(case_, options_.folder);
    out_ << "\n" << boundary_table(case_.boundaries);
    out_ << "\nThe case is complete. Run it: cd " << options_.folder
         << " && quillmere -f data.json\n";
  }

 private:
  void check_folder() const {
    const auto data = std::filesystem::path(options_.folder) / "data.json";
    if (!options_.overwrite && std::filesystem::exists(data)) {
      throw tools::Error(data.string() +
                         ": there is a case already; expected a new folder, or "
                         "--overwrite.");
    }
  }

  void read_mesh();
  void set_terrain();
  void set_fields();
  std::vector<int> ids(const char* option, const std::vector<std::string>& requests) const;
  void check_sediment_boundaries() const;
  void orient_edges(const EdgeIndex& index);
  void set_run();
  void set_snapshots();
  void place_gauges();

  /// Bed level of the cells, the sediments included, m.
  std::vector<double> bed() const {
    std::vector<double> bed = case_.bed;
    if (bed.empty()) {
      bed.reserve(case_.mesh.cells.size());
      for (const Cell& cell : case_.mesh.cells) bed.push_back(case_.mesh.center(cell).z);
    }
    for (std::size_t i = 0; i < case_.sediment.size(); ++i) bed[i] += case_.sediment[i];
    return bed;
  }

  const Options& options_;
  std::ostream& out_;
  Case case_;
};

void Import::read_mesh() {
  case_.mesh = read_mesh_file(options_.mesh);
  Mesh& mesh = case_.mesh;
  const CellChanges changes = prepare_cells(mesh, options_.keep_quads);
  const auto n_quads = static_cast<std::size_t>(std::count_if(
      mesh.cells.begin(), mesh.cells.end(), [](const Cell& cell) { return cell.is_quad(); }));
  out_ << "Read " << options_.mesh << " (" << mesh.format
       << "): " << counted(mesh.nodes.size(), "node", "nodes") << ", "
       << counted(mesh.cells.size() - n_quads, "triangle", "triangles");
  if (n_quads > 0) out_ << ", " << counted(n_quads, "quadrilateral", "quadrilaterals");
  out_ << ".\n";
  for (const auto& remark : mesh.remarks) out_ << remark << "\n";
  if (changes.n_split > 0) {
    out_ << "Split "
         << counted(static_cast<std::size_t>(changes.n_split), "quadrilateral", "quadrilaterals")
         << " into triangles, along the shorter diagonal (--keep-quads keeps them).\n";
  }
  if (n_quads > 0) {
    out_ << "Kept the quadrilaterals: the scheme is written for triangles and takes the first "
            "three edges of a cell.\n";
  }
  if (changes.n_repeated_cells > 0) {
    out_ << "Joined "
         << counted(static_cast<std::size_t>(changes.n_repeated_cells), "cell", "cells")
         << " that the file repeats.\n";
  }
  if (changes.n_unused_nodes > 0) {
    out_ << "Left out "
         << counted(static_cast<std::size_t>(changes.n_unused_nodes), "node", "nodes")
         << " that no cell has.\n";
  }
  out_ << "Turned " << counted(static_cast<std::size_t>(changes.n_turned), "cell", "cells")
       << " to run counter-clockwise.\n";
}

void Import::set_terrain() {
  Mesh& mesh = case_.mesh;
  if (!options_.terrain.empty()) {
    const int n_filled = set_elevations(mesh, Raster(options_.terrain), options_.fill);
    if (n_filled > 0) {
      out_ << "No terrain under " << counted(static_cast<std::size_t>(n_filled), "node", "nodes")
           << ": filled with " << shown(*options_.fill) << " m.\n";
    }
  }
  const auto [low, high] = std::minmax_element(
      mesh.nodes.begin(), mesh.nodes.end(), [](const Node& a, const Node& b) { return a.z < b.z; });
  out_ << "Elevations run from " << shown(low->z) << " to " << shown(high->z) << " m.\n";
}

std::vector<int> Import::ids(const char* option, const std::vector<std::string>& requests) const {
  std::vector<int> ids;
  if (requests.empty()) return ids;
  for (const auto& value :
       values_of_cells(case_.mesh, option, requests, RasterUse::most_frequent)) {
    const double id = value.value_or(-1.0);
    if (id != std::floor(id) || std::abs(id) > std::numeric_limits<int>::max()) {
      throw tools::Error(std::string(option) + ": found the ID " + shown(id) +
                         ", expected a whole number.");
    }
    ids.push_back(static_cast<int>(id));
  }
  return ids;
}

void Import::set_fields() {
  const Mesh& mesh = case_.mesh;
  if (!options_.bed.empty()) {
    std::vector<double> levels;
    const auto given = values_of_cells(mesh, "--bed", options_.bed, RasterUse::mean);
    for (std::size_t i = 0; i < given.size(); ++i) {
      levels.push_back(as_written(given[i].value_or(mesh.center(mesh.cells[i]).z)));
    }
    case_.bed = std::move(levels);
  }
  if (!options_.friction.empty()) {
    case_.friction = values_of_all_cells(mesh, "--friction", options_.friction);
  } else {
    out_ << "No --friction: the bed is smooth.\n";
  }
  if (!options_.sediment.empty()) {
    for (const auto& thickness :
         values_of_cells(mesh, "--sediment", options_.sediment, RasterUse::mean)) {
      case_.sediment.push_back(thickness.value_or(0.0));
    }
    case_.sediments = {options_.grain_diameter, options_.grain_density, options_.porosity};
  }
  case_.level = bed();  // dry
  std::size_t n_wet = 0;
  if (!options_.level.empty()) {
    const auto given = values_of_cells(mesh, "--level", options_.level, RasterUse::mean);
    for (std::size_t i = 0; i < given.size(); ++i) {
      if (!given[i] || !(*given[i] > case_.level[i])) continue;
      case_.level[i] = *given[i];
      ++n_wet;
    }
  }
  out_ << "Water stands in " << n_wet << " of " << counted(mesh.cells.size(), "cell", "cells")
       << " at the start.\n";
  case_.rain = ids("--rain", options_.rain);
  if (!case_.rain.empty()) case_.rain_file = read_whole_file(options_.hyetograms);
  case_.soil = ids("--soil", options_.soil);
  if (!case_.soil.empty()) case_.soil_file = read_whole_file(options_.soils);
}

void Import::check_sediment_boundaries() const {
  if (case_.sediment.empty()) return;
  for (const Boundary& boundary : case_.boundaries.list) {
    if (boundary.series_name.empty()) continue;
    throw tools::Error("--boundary " + boundary.name + "=" + boundary.kind +
                       ": a case with --sediment takes no series; expected wall, transmissive, "
                       "discharge:V or level:V.");
  }
}

void Import::orient_edges(const EdgeIndex& index) {
  std::vector<bool> is_fixed(case_.edges.size(), false);
  for (const auto& request : options_.sections) {
    Section section = make_section(case_.mesh, case_.edges, index, request);
    for (const int edge : section.edges) {
      if (is_fixed[static_cast<std::size_t>(edge)]) {
        throw tools::Error("--section " + request +
                           ": the line shares an edge with another section; expected lines of "
                           "their own.");
      }
      is_fixed[static_cast<std::size_t>(edge)] = true;
    }
    case_.sections.push_back(std::move(section));
  }
  const std::vector<double> bed_of_cells = bed();
  const int n_turned = turn_edges_uphill(case_.edges, bed_of_cells, is_fixed);
  out_ << "Turned " << counted(static_cast<std::size_t>(n_turned), "edge", "edges")
       << " to name the lower cell first, so that water at rest stays at rest.\n";
  for (const Section& section : case_.sections) {
    std::size_t n_downhill = 0;
    for (const int i : section.edges) {
      const Edge& edge = case_.edges[static_cast<std::size_t>(i)];
      n_downhill += bed_of_cells[static_cast<std::size_t>(edge.left)] >
                    bed_of_cells[static_cast<std::size_t>(edge.right)];
    }
    out_ << "Section " << section.name << ": " << counted(section.edges.size(), "edge", "edges")
         << ", " << shown(section.length) << " m, discharge positive towards ("
         << shown(std::round(section.nx * 1e3) / 1e3) << ", "
         << shown(std::round(section.ny * 1e3) / 1e3) << ")";
    if (n_downhill > 0) out_ << "; " << n_downhill << " of them name the higher cell first";
    out_ << ".\n";
  }
}

void Import::set_run() {
  case_.name =
      options_.name.empty() ? std::filesystem::path(options_.mesh).stem().string() : options_.name;
  constexpr double usual_end = 3600.0;
  double end = std::numeric_limits<double>::infinity();
  for (const Boundary& boundary : case_.boundaries.list) {
    if (!boundary.series_name.empty()) end = std::min(end, boundary.series_end);
  }
  case_.end = options_.end.value_or(std::isfinite(end) && end > 0.0 ? end : usual_end);
  if (end < case_.end) {
    out_ << "The shortest series ends at " << shown(end)
         << " s, before the run does; its last value holds.\n";
  }
  constexpr double intervals = 10.0;
  case_.interval = options_.interval.value_or(case_.end / intervals);
  case_.courant = options_.courant;
  case_.zero_depth = options_.zero_depth;
  set_snapshots();
}

/// Before the end: no step reaches the end itself.
void Import::set_snapshots() {
  out_ << "The run ends at " << shown(case_.end) << " s, with ";
  if (!case_.snapshots.empty()) {
    if (!(case_.snapshots.back() < case_.end)) {
      throw tools::Error("--snapshots: found " + shown(case_.snapshots.back()) +
                         ", expected times before the run ends, at " + shown(case_.end) + " s.");
    }
    out_ << counted(case_.snapshots.size(), "snapshot", "snapshots")
         << " before it and the envelope every " << shown(case_.interval) << " s.\n";
    return;
  }
  constexpr double most_snapshots = 1e6;
  if (case_.end / case_.interval > most_snapshots) {
    throw tools::Error("--interval: more than a million snapshots until " + shown(case_.end) +
                       " s; expected a longer one.");
  }
  for (double time = 0.0; time < case_.end * (1.0 - 1e-9);) {
    case_.snapshots.push_back(time);
    time = static_cast<double>(case_.snapshots.size()) * case_.interval;
  }
  out_ << "snapshots before it every " << shown(case_.interval) << " s.\n";
}

/// Where the options say, or else in the lowest cell.
void Import::place_gauges() {
  for (Node& gauge : case_.gauges) {
    const Node placed = place_gauge(case_.mesh, gauge);
    if (placed.x != gauge.x || placed.y != gauge.y) {
      out_ << "Moved the gauge at " << shown_point(gauge.x, gauge.y)
           << ", on the border of cells, to " << shown_point(placed.x, placed.y) << ".\n";
    }
    gauge = placed;
  }
  if (!case_.gauges.empty()) return;
  const std::vector<double> levels = bed();
  const auto lowest = std::min_element(levels.begin(), levels.end()) - levels.begin();
  const Cell& cell = case_.mesh.cells[static_cast<std::size_t>(lowest)];
  case_.gauges.push_back(point_inside(case_.mesh, cell));
  out_ << "A gauge stands in the lowest cell, at "
       << shown_point(case_.gauges.front().x, case_.gauges.front().y) << ".\n";
}

void add_options(CLI::App& command, Options& options) {
  const auto repeated = [&command](const char* name, std::vector<std::string>& values,
                                   const char* form, const char* meaning) {
    command.add_option(name, values, meaning)
        ->type_name(form)
        ->type_size(1)
        ->allow_extra_args(false);
  };
  command.add_option("MESH", options.mesh, "Mesh file: .msh, .geo or .2dm")->required();
  command.add_option("CASE", options.folder, "Folder of the case, made if needed")->required();
  command
      .add_option("--terrain", options.terrain,
                  "Elevation of the nodes from a raster: ESRI ASCII (.asc), GeoTIFF")
      ->type_name("FILE");
  command.add_option("--fill", options.fill, "Elevation of nodes where the terrain has no data")
      ->type_name("VALUE");
  repeated("--boundary", options.boundaries, "NAME=KIND",
           "Condition on a named line: hydrograph:FILE, discharge:V, level:V, limnigraph:FILE, "
           "transmissive, wall; discharges in m2/s, an inflow is negative. Lines not given are "
           "walls");
  repeated("--section", options.sections, "NAME[=reversed]",
           "Record the discharge through a named inner line");
  repeated("--gauge", options.gauges, "X,Y",
           "Record the flow at a point; otherwise one gauge stands in the lowest cell");
  const char* form = "[NAME=]VALUE";
  repeated("--friction", options.friction, form, "Manning coefficient, s/m^(1/3)");
  repeated("--level", options.level, form, "Initial water level, m; the rest is dry");
  repeated("--bed", options.bed, form,
           "Bed level of cells, m, in place of the mean of their nodes");
  repeated("--sediment", options.sediment, form, "Thickness of the erodible layer, m");
  command.add_option("--grain-diameter", options.grain_diameter, "Mean grain diameter, m")
      ->type_name("VALUE");
  command.add_option("--grain-density", options.grain_density, "Density relative to water")
      ->capture_default_str()
      ->type_name("VALUE");
  command.add_option("--porosity", options.porosity, "Porosity of the bed")
      ->capture_default_str()
      ->type_name("VALUE");
  repeated("--rain", options.rain, form, "ID of the hyetogram, -1 for none");
  command.add_option("--hyetograms", options.hyetograms, "Rain file that holds the hyetograms")
      ->type_name("FILE");
  repeated("--soil", options.soil, form, "ID of the soil, -1 for none");
  command.add_option("--soils", options.soils, "Infiltration file that holds the soils")
      ->type_name("FILE");
  command.add_option("--name", options.name, "Title of the case; otherwise the mesh file's name")
      ->type_name("TEXT");
  command
      .add_option("--end", options.end,
                  "End of the run, s; otherwise where the shortest series ends, or 3600")
      ->type_name("SECONDS");
  command
      .add_option("--interval", options.interval,
                  "Between snapshots and envelopes, s; otherwise a tenth of the run. Gauges and "
                  "sections are recorded ten times as often")
      ->type_name("SECONDS");
  command.add_option("--snapshots", options.snapshots, "Times of the snapshots instead, s")
      ->type_name("T1,T2,...");
  command
      .add_option("--zero-depth", options.zero_depth,
                  "Depth up to which a cell counts as dry, m; otherwise 0.0001")
      ->type_name("VALUE");
  command.add_option("--cfl", options.courant, "Courant number")
      ->capture_default_str()
      ->type_name("VALUE");
  command.add_flag("--keep-quads", options.keep_quads, "Do not split quadrilaterals");
  command.add_flag("--overwrite", options.overwrite, "Replace a case that is there");
  command.footer(
      "VALUE may also be a raster file: a cell takes the mean of its pixels (for IDs the most "
      "frequent one). With NAME= it holds for a named surface, without for all cells; the named "
      "ones come last.");
}

}  // namespace

}  // namespace mesh_import

void add_import_command(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "import", "Makes a case folder from a mesh of Gmsh (.msh 2.2 or 4.1, .geo) or SMS (.2dm).");
  command->formatter_fn([](const CLI::App* self, std::string name, CLI::AppFormatMode mode) {
    return mesh_import::examples + CLI::Formatter().make_help(self, std::move(name), mode);
  });
  const auto options = std::make_shared<mesh_import::Options>();
  mesh_import::add_options(*command, *options);
  command->callback([options] { mesh_import::Import(*options, std::cout).run(); });
}
