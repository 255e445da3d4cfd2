// What the command line of `make` says.
#pragma once

#include <limits>
#include <string>

#include "mesh/import_options.hpp"

namespace CLI {
class App;
}

namespace mesh_import {

struct MakeOptions {
  ImportOptions of_case;                                   // its mesh is the outline
  double size = std::numeric_limits<double>::quiet_NaN();  // of edges, m
  double most_cells = 2e6;
  std::string breaklines, holes, refinements;  // files
};

/// Adds the arguments and options of the command; `options` lives as long as the command.
void add_make_options(CLI::App& command, MakeOptions& options);

/// Refuses what needs no file to be seen as wrong: throws CLI::ValidationError.
void check_make_usage(const MakeOptions& options);

}  // namespace mesh_import
