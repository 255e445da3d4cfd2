// Values of cells: from the names of surfaces, from rasters, or the same for all.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mesh/mesh.hpp"
#include "mesh/raster.hpp"

namespace mesh_import {

enum class RasterUse { mean, most_frequent };

/// A value per cell, none where nothing gives one. Every request is VALUE or RASTER (for all cells)
/// or NAME=VALUE or NAME=RASTER (for the cells of a surface); those with a name come after those
/// without, and a later one replaces an earlier one. `option` names the option in messages.
/// Throws tools::Error, for a name that the mesh does not have with the list of those it has.
std::vector<std::optional<double>> values_of_cells(const Mesh& mesh, const std::string& option,
                                                   const std::vector<std::string>& requests,
                                                   RasterUse use);

/// The same, where every cell must have a value.
std::vector<double> values_of_all_cells(const Mesh& mesh, const std::string& option,
                                        const std::vector<std::string>& requests);

/// Gives the nodes the elevation of the terrain, or `fill` where it has no data; the number of
/// nodes filled. Throws tools::Error where data are missing and there is no `fill`.
int set_elevations(Mesh& mesh, const Raster& terrain, std::optional<double> fill);

/// The names for a message, separated by commas; "none" without any.
std::string list_of_names(const std::vector<std::string>& names);

}  // namespace mesh_import
