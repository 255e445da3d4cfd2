// What the command lines of `import` and `make` say.
#pragma once

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "case/keys.hpp"

namespace CLI {
class App;
}

namespace mesh_import {

/// Requests that may be repeated are kept as they were written.
struct ImportOptions {
  std::string mesh;
  std::string folder;
  std::string origin;
  std::string terrain;
  bool terrain_is_surface = false;  // of the sediment
  std::optional<double> merge_distance;
  std::optional<int> epsg;  // coordinate reference system of the mesh
  std::optional<double> fill;
  std::vector<std::string> boundaries, spreads;
  std::vector<std::string> friction, strickler, level, bed, sediment, rain, soil;
  std::string hyetograms, soils;
  std::vector<std::string> sections;
  std::string drawn_boundaries, drawn_sections, drawn_gauges, drawn_zones;  // files
  std::optional<double> snap;                                               // m
  double grain_diameter = std::numeric_limits<double>::quiet_NaN();
  double grain_density = 2.65;
  double porosity = 0.4;
  std::string name;
  std::string epoch;
  std::vector<std::string> gauges;
  std::string snapshots;
  double maxima = cases::default_number(cases::key("output/maxima of flow/arrival depth"));
  std::optional<double> end, interval, zero_depth;
  double courant = 0.9;
  std::string scheme;
  bool no_boundary_sections = false;
  bool overwrite = false;
  bool allow_commands = false;
};

/// Adds the mesh file and what is about it alone; `options` lives as long as the command.
void add_mesh_options(CLI::App& command, ImportOptions& options);

/// Adds the folder of the case and all that makes a case of a mesh; `options` lives as long as the
/// command.
void add_case_options(CLI::App& command, ImportOptions& options);

/// Refuses what needs no file to be seen as wrong: throws CLI::ValidationError (wrong usage).
void check_usage(const ImportOptions& options);

}  // namespace mesh_import
