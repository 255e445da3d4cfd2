// Set-up of the mesh: nodes, cells and edges, and warnings about what is suspicious in them.
#include <cmath>

#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "globals/edge_codes.hpp"
#include "model/finite_geometry.hpp"
#include "utils/MeshReader.hpp"
#include "utils/files.hpp"
#include "utils/stop.hpp"

namespace {

constexpr int no_edges_expected = 3;

/// Warnings about edges that are well-formed and probably wrong.
class EdgeWarnings {
 public:
  void check(const GenericInterface& edge, int right, int code) {
    if (!(edge.length > 0.0)) {
      degenerate_.add(name_of(edge) + " has no length: its flux is not a number.");
    } else if (points_into_left_cell(edge)) {
      inward_.add(name_of(edge) + " has a normal that points into its left cell " +
                  std::to_string(edge.cell_left->id) + "; list its two nodes the other way round.");
    }
    if (!edge_code::is_between_cells(code) && right >= 0) {
      two_sided_.add(name_of(edge) + " has the boundary code " + std::to_string(code) +
                     " and also a right cell " + std::to_string(right) +
                     ", which gets no flux through it.");
    }
  }

 private:
  static std::string name_of(const GenericInterface& edge) {
    return "edge " + std::to_string(edge.tag) + " (counted from 0)";
  }
  static bool points_into_left_cell(const GenericInterface& edge) {
    const MeshNode middle = (*edge.nodes[0] + *edge.nodes[1]) / 2.0;
    const MeshNode& center = edge.cell_left->center;
    return (middle.x - center.x) * edge.normal.x + (middle.y - center.y) * edge.normal.y < 0.0;
  }

  utils::RepeatedWarning degenerate_{"edges without length."};
  utils::RepeatedWarning inward_{"edges whose normal points into their left cell."};
  utils::RepeatedWarning two_sided_{"edges with a boundary code and a right cell."};
};

void warn_about_edge_counts(const PhysicalModel& model) {
  utils::RepeatedWarning odd("cells with other than three edges.");
  for (const auto& cell : model.cells) {
    const auto count = cell->interfaces.size();
    if (count == no_edges_expected) continue;
    odd.add("cell " + std::to_string(cell->id) + " (counted from 0) has " + std::to_string(count) +
            " edges; the scheme takes the first three of a cell.");
  }
}

}  // namespace

void Domain::read_mesh() {
  std::ostream& log = Globals::spyFile;
  log << "Reading of input files to set-up the model geometry:\n";
  log << "  Reading nodes in: " << nodes_file << '\n';
  read_nodes(nodes_file);
  log << "    Number of nodes created: " << model->n_nodes << '\n';

  log << "  Reading cells in: " << cells_file << '\n';
  read_cells(cells_file);
  // Intended: three leading blanks here and below, four above.
  log << "   Number of cells created: " << model->n_cells << '\n';

  const auto n_cells = static_cast<std::size_t>(model->n_cells);
  umax_buffer.assign(n_cells, 0.0);
  if (is_pictures) allocate_snapshot();

  log << "  Reading interfaces in: " << edges_file << '\n';
  read_edges(edges_file);
  log << "   Number of interfaces created: " << model->n_interfaces << '\n';
  utils::print_delimitator(log);
}

void Domain::allocate_snapshot() {
  const bool has_infiltrated_depth = is_infiltration || is_initial_infiltration;
  const std::size_t hydrodynamic_columns = has_infiltrated_depth ? 4 : 3;
  model->cell_value_rows.allocate(model->cells.size(), has_sediments() ? 7 : hydrodynamic_columns);
}

void Domain::read_nodes(const std::string& name) {
  utils::MeshReader reader(name, "node", 3);
  model->n_nodes = reader.get_number_of_elements();
  model->mesh_nodes.reserve(static_cast<std::size_t>(model->n_nodes));
  for (int i = 0; i < model->n_nodes; ++i) {
    model->mesh_nodes.emplace_back(reader.read_next_node(3));
  }
}

void Domain::read_cells(const std::string& name) {
  utils::MeshReader reader(name, "cell", 2);
  model->n_cells = reader.get_number_of_elements();
  if (model->n_cells == 0) {
    utils::fatal("Error in file " + name +
                 ", header, number of records: found 0, expected 1 or more: a mesh has cells.\n");
  }
  model->cells.reserve(static_cast<std::size_t>(model->n_cells));
  std::vector<const MeshNode*> nodes;
  for (int i = 0; i < model->n_cells; ++i) {
    nodes.clear();
    for (const int node : reader.read_next_cell(model->n_nodes)) {
      nodes.push_back(&model->mesh_nodes[static_cast<std::size_t>(node)]);
    }
    model->build_cell(i, nodes);
    const ComputationalCell& cell = *model->cells.back();
    if (!has_finite_geometry(cell)) reader.refuse_record(overflow_of(nodes));
    area_loss.add({cell.center.x, cell.center.y}, cell.area, cell.accurate_area());
  }
}

void Domain::read_edges(const std::string& name) {
  utils::MeshReader reader(name, "edge", 5);
  model->n_interfaces = reader.get_number_of_elements();
  model->interfaces.reserve(static_cast<std::size_t>(model->n_interfaces));
  EdgeWarnings warnings;
  for (int i = 0; i < model->n_interfaces; ++i) {
    const auto& [left, right, node1, node2, code, value, file] =
        reader.read_next_edge(model->n_nodes, model->n_cells);
    model->build_interface(flux_scheme, i, left, right,
                           model->mesh_nodes[static_cast<std::size_t>(node1)],
                           model->mesh_nodes[static_cast<std::size_t>(node2)], code, value, file);
    const GenericInterface& edge = *model->interfaces.back();
    if (!std::isfinite(edge.length)) {
      reader.refuse_record(overflow_of({edge.nodes[0], edge.nodes[1]}));
    }
    warnings.check(edge, right, code);
  }
  for (const auto& cell : model->cells) {
    cell->sort_interfaces_by_tag();
    cell->set_local_index_to_edges();
  }
  warn_about_edge_counts(*model);
}
