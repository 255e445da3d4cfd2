// Makes the cells of a mesh such that the simulator can use them.
#pragma once

#include "mesh/mesh.hpp"

namespace mesh_import {

/// What was changed, in cells or nodes.
struct CellChanges {
  int n_turned = 0;          // to run counter-clockwise
  int n_split = 0;           // quadrilaterals, into two triangles each
  int n_unused_nodes = 0;    // left out: no cell has them
  int n_repeated_cells = 0;  // joined: a file may hold a cell once for each of its surfaces
};

/// Turns cells to run counter-clockwise, splits quadrilaterals along their shorter diagonal, joins
/// repeated cells, drops unused nodes and rounds coordinates to what the case will hold. Throws
/// tools::Error for cells without area or that cross themselves.
CellChanges prepare_cells(Mesh& mesh);

/// Leaves out the nodes that no cell has, and answers how many; a piece of a line on one of them
/// gets a negative index.
int drop_unused_nodes(Mesh& mesh);

}  // namespace mesh_import
