#include "mesh/make_options.hpp"

#include <CLI/CLI.hpp>
#include <cmath>

namespace mesh_import {

void add_make_options(CLI::App& command, MakeOptions& options) {
  command
      .add_option("OUTLINE", options.of_case.mesh,
                  "Polygon to mesh, in GeoJSON, a GeoPackage or a shapefile")
      ->required();
  command.add_option("--size", options.size, "Length of the edges of the mesh, m")
      ->required()
      ->type_name("LENGTH");
  const auto drawn = [&command](const char* name, std::string& file, const char* meaning) {
    command.add_option(name, file, meaning)->type_name("FILE");
  };
  drawn("--breaklines", options.breaklines,
        "Lines that edges of the mesh follow, as dikes and banks: name");
  drawn("--holes", options.holes, "Polygons that are left out, as buildings");
  drawn("--refine", options.refinements,
        "Polygons with shorter edges: size, in m. Around them edges grow by a fifth of the "
        "distance");
  command
      .add_option("--most-cells", options.most_cells, "Refuse sizes that make more cells than this")
      ->capture_default_str()
      ->type_name("COUNT");
  add_case_options(command, options.of_case);
}

void check_make_usage(const MakeOptions& options) {
  const auto check = [](const char* option, double value) {
    if (!(value > 0.0) || !std::isfinite(value)) {
      throw CLI::ValidationError(option, "must be above 0");
    }
  };
  check("--size", options.size);
  check("--most-cells", options.most_cells);
}

}  // namespace mesh_import
