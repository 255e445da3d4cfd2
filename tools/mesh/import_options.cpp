#include "mesh/import_options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "case/reference.hpp"
#include "case/schemes.hpp"
#include "mesh/boundaries.hpp"
#include "mesh/steady_rain.hpp"
#include "mesh/units.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

[[noreturn]] void refuse_usage(const std::string& option, const std::string& message) {
  throw CLI::ValidationError(option, message);
}

std::vector<std::string> names_of_schemes() {
  std::vector<std::string> names;
  for (const cases::SchemeKind& kind : cases::schemes) names.emplace_back(kind.name);
  return names;
}

/// What `read` makes of the text of an option.
template <class Read>
auto understood(const char* option, const std::string& text, const std::string& expected,
                const Read& read) {
  const auto value = read(text);
  if (!value) refuse_usage(option, "found \"" + text + "\", expected " + expected);
  return *value;
}

}  // namespace

void add_mesh_options(CLI::App& command, ImportOptions& options) {
  command.add_option("MESH", options.mesh, "Mesh file: .msh, .geo, .2dm, .slf or .nc")->required();
  command
      .add_option("--merge-nodes", options.merge_distance,
                  "Join nodes of the boundary that lie no further apart, m: a crack between them "
                  "lets no water pass")
      ->type_name("DISTANCE");
  command.add_flag("--allow-commands", options.allow_commands,
                   "Let a .geo run commands of the shell: it is a program, and is refused where it "
                   "runs others. It may write files either way");
}

void add_case_options(CLI::App& command, ImportOptions& options) {
  const auto repeated = [&command](const char* name, std::vector<std::string>& values,
                                   const char* form, const std::string& meaning) {
    command.add_option(name, values, meaning)
        ->type_name(form)
        ->type_size(1)
        ->allow_extra_args(false);
  };
  command.add_option("CASE", options.folder, "Folder of the case, made if needed")->required();
  command
      .add_option_function<std::string>(
          "--crs",
          [&options](const std::string& text) {
            options.epsg = understood("--crs", text, cases::expected_crs, cases::epsg_of);
          },
          "Coordinate reference system of the mesh, as in EPSG:32632, otherwise that of its file, "
          "or of the terrain, where these tell it: rasters in another one are told")
      ->type_name("EPSG:n");
  command
      .add_option_function<std::string>(
          "--epoch",
          [&options](const std::string& text) {
            understood("--epoch", text, cases::expected_epoch, cases::epoch_of);
            options.epoch = text;
          },
          "Date and hour of the time 0 s, UTC, as in 2026-05-01T06:00:00Z")
      ->type_name("DATE");
  command
      .add_option("--terrain", options.terrain,
                  "Elevation of the nodes from a raster: ESRI ASCII (.asc), GeoTIFF")
      ->type_name("FILE");
  command
      .add_option("--origin", options.origin,
                  "Take this point from all coordinates of the case, which keep more digits near "
                  "the origin; quillmere-export adds it again")
      ->type_name("X,Y");
  command
      .add_option_function<std::string>(
          "--terrain-is",
          [&options](const std::string& what) { options.terrain_is_surface = what == "surface"; },
          "What the elevations of the mesh, the terrain and --bed mean with --sediment: the rock "
          "below it, or its surface")
      ->type_name("rock|surface")
      ->check(CLI::IsMember({"rock", "surface"}));
  command.add_option("--fill", options.fill, "Elevation of nodes where the terrain has no data")
      ->type_name("VALUE");
  repeated("--boundary", options.boundaries, "NAME=KIND",
           "Condition on a named line: " + forms_of_boundaries() +
               "; discharges in m2/s, or of the whole line as in -40m3/s, an inflow is negative. A "
               "FILE with titles names its units. Lines not given are walls");
  repeated("--spread", options.spreads, "NAME=LEVEL|even",
           "How a discharge in m3/s is spread over the edges of its line: by the conveyance of "
           "water up to a level, or evenly; otherwise by that of the initial water");
  repeated("--section", options.sections, "NAME[=reversed]",
           "Record the discharge through a named inner line");
  command.add_flag("--no-boundary-sections", options.no_boundary_sections,
                   "Do not record the discharges along the boundaries that water passes");
  repeated("--gauge", options.gauges, "[NAME=]X,Y",
           "Record the flow at a point; otherwise one gauge stands in the lowest cell");
  const auto drawn = [&command](const char* name, std::string& file, const char* meaning) {
    command.add_option(name, file, meaning)->type_name("FILE");
  };
  drawn("--boundaries", options.drawn_boundaries,
        "Boundaries drawn as lines along the mesh, or polygons around its edges, in GeoJSON, a "
        "GeoPackage or a shapefile: attributes name, kind, value (and unit) or series, spread, "
        "reversed");
  drawn("--sections", options.drawn_sections, "Sections drawn as lines: name, reversed");
  drawn("--gauges", options.drawn_gauges, "Gauges drawn as points: name");
  drawn("--zones", options.drawn_zones,
        "Zones drawn as polygons: name, friction, level, bed, sediment, rain, soil");
  command
      .add_option("--snap", options.snap,
                  "How far the mesh may lie from what is drawn, m; otherwise the mean length of "
                  "its edges")
      ->type_name("DISTANCE");
  const char* form = "[NAME=]VALUE";
  repeated("--friction", options.friction, form, "Manning coefficient, s/m^(1/3)");
  repeated("--friction-strickler", options.strickler, form,
           "Strickler coefficient, m^(1/3)/s, in place of Manning's");
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
  repeated("--rain", options.rain, form,
           "Steady rain as in 20mm/h, or the ID of the hyetogram, -1 for none");
  command.add_option("--hyetograms", options.hyetograms, "Rain file that holds the hyetograms")
      ->type_name("FILE");
  repeated("--soil", options.soil, form, "ID of the soil, -1 for none");
  command.add_option("--soils", options.soils, "Infiltration file that holds the soils")
      ->type_name("FILE");
  command.add_option("--name", options.name, "Title of the case; otherwise the mesh file's name")
      ->type_name("TEXT");
  const auto duration = [&command](const char* name, std::optional<double>& value,
                                   const char* meaning) {
    command
        .add_option_function<std::string>(
            name,
            [name, &value](const std::string& text) {
              value = parse_duration(text);
              if (value) return;
              refuse_usage(name, "found \"" + text + "\", expected a time, as in 600, 10min or 2h");
            },
            meaning)
        ->type_name("TIME");
  };
  duration(
      "--end", options.end,
      "End of the run, in s, min, h or d; otherwise where the shortest series ends, or 3600 s");
  duration("--interval", options.interval,
           "Between snapshots; otherwise a tenth of the run. Envelopes come about as "
           "often, gauges and sections ten times, the last ones just before the end");
  command.add_option("--snapshots", options.snapshots, "Times of the snapshots instead, s")
      ->type_name("T1,T2,...");
  command
      .add_option("--maxima", options.maxima,
                  "Depth from which on a cell counts as under water in the maxima of the flow, for "
                  "the time of arrival and the duration, m")
      ->capture_default_str()
      ->type_name("DEPTH");
  command
      .add_option("--zero-depth", options.zero_depth,
                  "Depth up to which a cell counts as dry, m; otherwise 0.0001. With --sediment "
                  "try 0.001 or more")
      ->type_name("VALUE");
  command.add_option("--cfl", options.courant, "Courant number")
      ->capture_default_str()
      ->type_name("VALUE");
  command
      .add_option("--scheme", options.scheme,
                  "Flux scheme; otherwise HLL2, or LHLLC with --sediment")
      ->type_name("NAME")
      ->check(CLI::IsMember(names_of_schemes()));
  command.add_flag("--overwrite", options.overwrite,
                   "Replace a case that is there, and remove its results");
  command.footer(
      "VALUE may also be a raster file: a cell takes the mean of its pixels (for IDs the most "
      "frequent one). With NAME= it holds for a named surface, without for all cells; the named "
      "ones come last.");
}

void check_usage(const ImportOptions& options) {
  if (options.fill && options.terrain.empty()) refuse_usage("--fill", "needs --terrain");
  const auto n_steady = std::count_if(options.rain.begin(), options.rain.end(), is_steady_rain);
  if (n_steady < static_cast<std::ptrdiff_t>(options.rain.size()) && options.hyetograms.empty()) {
    refuse_usage("--rain",
                 "gives IDs of hyetograms: name their file with --hyetograms, or give rain as in "
                 "20mm/h");
  }
  if (n_steady > 0 && !options.hyetograms.empty()) {
    refuse_usage("--rain", "gives steady rain, in mm/h, which does not go with --hyetograms");
  }
  if (!options.friction.empty() && !options.strickler.empty()) {
    refuse_usage("--friction", "does not go with --friction-strickler: give one of them");
  }
  if (options.terrain_is_surface && options.sediment.empty()) {
    refuse_usage("--terrain-is surface", "needs --sediment");
  }
  if (!options.soil.empty() && options.soils.empty()) {
    refuse_usage("--soil", "gives IDs of soils: name their file with --soils");
  }
  if (!options.sediment.empty() && !(options.grain_diameter > 0.0)) {
    refuse_usage("--sediment", "needs --grain-diameter, in m, above 0");
  }
  if (!options.sediment.empty() && options.friction.empty() && options.strickler.empty()) {
    refuse_usage("--sediment", "needs --friction: the flow carries no sediment over a smooth bed");
  }
  const auto check_positive = [](const char* option, double value) {
    if (!(value > 0.0) || !std::isfinite(value)) refuse_usage(option, "must be above 0");
  };
  const double distance = options.merge_distance.value_or(0.0);
  if (!(distance >= 0.0) || !std::isfinite(distance)) {
    refuse_usage("--merge-nodes", "must be a distance, m; 0 joins nodes at the same place");
  }
  check_positive("--snap", options.snap.value_or(1.0));
  check_positive("--end", options.end.value_or(1.0));
  check_positive("--interval", options.interval.value_or(1.0));
  if (cases::fault_of_arrival_depth(options.maxima)) {
    refuse_usage("--maxima", "must be a depth that is not negative");
  }
  check_positive("--cfl", options.courant);
  check_positive("--zero-depth", options.zero_depth.value_or(1.0));
}

}  // namespace mesh_import
