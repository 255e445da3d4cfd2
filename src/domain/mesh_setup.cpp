// Set-up of the mesh: nodes, cells and edges.
#include "case/read_mesh.hpp"
#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "utils/files.hpp"

void Domain::read_mesh() {
  std::ostream& log = Globals::spyFile;
  log << "Reading of input files to set-up the model geometry:\n";
  log << "  Reading nodes in: " << nodes_file << '\n';
  cases::read_nodes(nodes_file, case_.mesh);
  log << "    Number of nodes created: " << case_.mesh.n_nodes() << '\n';

  log << "  Reading cells in: " << cells_file << '\n';
  cases::read_cells(cells_file, case_.mesh, area_loss);
  // Intended: three leading blanks here and below, four above.
  log << "   Number of cells created: " << case_.mesh.n_cells() << '\n';

  log << "  Reading interfaces in: " << edges_file << '\n';
  cases::read_edges(edges_file, flux_scheme, case_, diagnostics_);
  log << "   Number of interfaces created: " << case_.mesh.n_edges() << '\n';
  utils::print_delimitator(log);
}
