#include "ranks/mesh_rows_of_blocks.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "case/initial_state.hpp"
#include "case/node_bed.hpp"
#include "ranks/SendPlan.hpp"

namespace ranks {

namespace {

/// What no block tells of the whole mesh.
struct Shape {
  std::uint64_t width = 0;         ///< most nodes of a cell
  std::uint64_t has_cell_bed = 0;  ///< whether something else than the nodes makes the bed
};

Shape shape_of_all(Group& group, const cases::Case& block) {
  const Shape own = {cases::most_nodes_of_a_cell(block.mesh), !cases::nodes_make_bed(block)};
  Shape all;
  for (const Shape& of_rank : gather_all_plain(group, own)) {
    all.width = std::max(all.width, of_rank.width);
    all.has_cell_bed |= of_rank.has_cell_bed;
  }
  return all;
}

/// At the nodes of the block of this rank, of the cells around them wherever these are.
std::vector<double> bed_at_nodes(Group& group, const CaseBlocks& blocks,
                                 const std::vector<double>& cell_bed) {
  const cases::Mesh& mesh = blocks.contents.mesh;
  std::vector<Number> nodes;  // of the corners of all cells, one after the other
  std::vector<double> beds;   // m, of their cells
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    for (const Number here : mesh.nodes_of(cell)) {
      nodes.push_back(blocks.node_number[at(here)]);
      beds.push_back(cell_bed[at(cell)]);
    }
  }
  const auto to_owner = [&](Number corner, const auto& visit) {
    visit(blocks.nodes.owner_of(nodes[at(corner)]));
  };
  const SendPlan plan(group, static_cast<Number>(nodes.size()), to_owner);
  nodes = plan.send(nodes);
  beds = plan.send(beds);
  // Blocks follow each other by their ranks: the terms of a node come in the order of all cells.
  cases::NodeBed bed(blocks.corners.z.size());
  const Number first = blocks.nodes.begin(group.rank());
  for (std::size_t k = 0; k < nodes.size(); ++k) bed.add(at(nodes[k] - first), beds[k]);
  return bed.means(blocks.corners.z);
}

}  // namespace

cases::MeshRows mesh_rows_of_blocks(Group& group, const CaseBlocks& blocks,
                                    physics::PlanPoint origin) {
  const Shape shape = shape_of_all(group, blocks.contents);
  cases::MeshRows rows;
  rows.width = shape.width;
  rows.first_node = at(blocks.nodes.begin(group.rank()));
  rows.first_cell = at(blocks.cells.begin(group.rank()));
  rows.cell_bed = cases::bed_levels_of(blocks.contents);
  rows.node_bed =
      shape.has_cell_bed != 0 ? bed_at_nodes(group, blocks, rows.cell_bed) : blocks.corners.z;
  cases::add_nodes(blocks.corners.x, blocks.corners.y, origin, rows);
  cases::add_cells(
      blocks.contents.mesh, origin, [&](int here) { return blocks.node_number[at(here)]; }, rows);
  return rows;
}

}  // namespace ranks
