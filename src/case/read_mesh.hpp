// Reads the mesh files of a case. What is malformed ends the run with its place.
#pragma once

#include <string>

#include "case/AreaLoss.hpp"
#include "case/Case.hpp"
#include "case/Diagnostics.hpp"

namespace cases {

void read_nodes(const std::string& name, Mesh& mesh);
/// Needs the nodes; adds the cells to the loss of area.
void read_cells(const std::string& name, Mesh& mesh, AreaLoss& area_loss);
/// Ends the run unless the model has what a code asks for: that of a boundary or of a flux scheme.
void require_known(int code, Number edge, bool has_sediments);
/// Needs nodes and cells. `scheme` is the code of the flux scheme, which interior edges take.
void read_edges(const std::string& name, int scheme, Case& contents, Diagnostics& diagnostics);

/// Ends the run: the cells file `name` holds no cell.
[[noreturn]] void refuse_mesh_without_cells(const std::string& name);

}  // namespace cases
