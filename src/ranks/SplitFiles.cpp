#include "ranks/SplitFiles.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "case/check_sediments.hpp"
#include "case/finite_geometry.hpp"
#include "case/mesh_records.hpp"
#include "case/read_fields.hpp"
#include "case/read_mesh.hpp"
#include "ranks/NumberSet.hpp"
#include "ranks/SendPlan.hpp"
#include "ranks/SplitEdges.hpp"
#include "ranks/read_piece.hpp"
#include "ranks/split_files.hpp"
#include "ranks/values.hpp"

namespace ranks {

Corners corners_of(Group& group, const CaseBlocks& blocks, const std::vector<Number>& nodes) {
  const SendPlan plan = SendPlan::of_wanted(group, nodes, blocks.nodes);
  const Corners& here = blocks.corners;
  return {plan.send(here.x), plan.send(here.y), plan.send(here.z)};
}

Number SplitFiles::read_nodes(const std::string& name) {
  const auto piece = share_counted_file(group_, name, cases::records_of(3), cases::tokens_of_node);
  cases::Mesh nodes;
  FirstRefusal refusal;
  read_piece(name, piece, refusal,
             [&](auto& file) { cases::read_node_run(file, piece.records, nodes); });
  refusal.end(group_);
  blocks_.nodes = Blocks(group_, nodes.n_nodes());
  blocks_.corners = {std::move(nodes.x), std::move(nodes.y), std::move(nodes.z)};
  return blocks_.nodes.total();
}

Number SplitFiles::read_cells(const std::string& name) {
  const auto piece = share_counted_file(group_, name, cases::shape_of_cells, cases::tokens_of_cell);
  const cases::Records& records = piece.records;
  const Number n_nodes = blocks_.nodes.total();
  cases::Mesh& mesh = blocks_.contents.mesh;
  FirstRefusal refusal;
  read_piece(name, piece, refusal, [&](auto& file) {
    cases::read_cell_run(file, records, n_nodes, mesh, [](Number) {});
  });
  take_corners();
  check_geometry(name, piece, refusal);
  refusal.end(group_);
  together([&] {
    if (records.total == 0) cases::refuse_mesh_without_cells(name);
  });
  blocks_.cells = Blocks(group_, mesh.n_cells());
  sum_up_area_loss();
  return blocks_.cells.total();
}

void SplitFiles::take_corners() {
  cases::Mesh& mesh = blocks_.contents.mesh;
  const NumberSet nodes({mesh.cell_nodes});
  for (Number& node : mesh.cell_nodes) node = nodes.place_of(node);
  blocks_.node_number = nodes.numbers();
  Corners corners = corners_of(group_, blocks_, blocks_.node_number);
  mesh.x = std::move(corners.x);
  mesh.y = std::move(corners.y);
  mesh.z = std::move(corners.z);
}

void SplitFiles::check_geometry(const std::string& name, const cases::PieceOfRecords& piece,
                                FirstRefusal& refusal) const {
  const cases::Mesh& mesh = blocks_.contents.mesh;
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    if (cases::is_finite(mesh.geometry_of(cell))) continue;
    const std::string why = cases::overflow_of(mesh, mesh.nodes_of(cell));
    refuse_record(name, piece, piece.records.first + cell, why, refusal,
                  [&](auto& file, const cases::Records& up_to_it) {
                    cases::Mesh cells;
                    cases::read_cell_run(file, up_to_it, blocks_.nodes.total(), cells,
                                         [](Number) {});
                  });
    return;
  }
}

void SplitFiles::sum_up_area_loss() {
  const cases::Mesh& mesh = blocks_.contents.mesh;
  AreaLoss own;
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const cases::CellGeometry geometry = mesh.geometry_of(cell);
    own.add({geometry.center.x, geometry.center.y}, geometry.area, mesh.accurate_area_of(cell));
  }
  for (const auto& [sender, loss] : exchange_values(group_, std::map<int, AreaLoss>{{0, own}})) {
    blocks_.area_loss.add(loss);
  }
}

Number SplitFiles::read_edges(const std::string& name, int scheme) {
  return SplitEdges(group_, diagnostics_, blocks_).read(name, scheme);
}

void SplitFiles::read_cell_file(const cases::CellFile& described, const std::string& name) {
  const int columns = static_cast<int>(described.columns().size());
  const auto piece = share_file(group_, name, cases::records_of(columns), blocks_.cells.total());
  cases::CellFields fields;
  FirstRefusal refusal;
  read_piece(name, piece, refusal, [&](auto& file) {
    cases::read_cell_file_run(described, file, piece.records, fields);
  });
  refusal.end(group_);
  for (const cases::CellColumn& column : described.columns()) {
    blocks_.contents.fields.*column.values =
        into_blocks(group_, fields.*column.values, piece.records.first, blocks_.cells);
  }
}

void SplitFiles::read_terms(const std::string& name, const std::vector<int>& ids,
                            std::vector<int> cases::CellFields::*column) {
  const auto piece = share_file(group_, name, cases::records_of(1), blocks_.cells.total());
  std::vector<int> terms;
  FirstRefusal refusal;
  read_piece(name, piece, refusal, [&](auto& file) {
    terms = cases::read_term_run(file, piece.records, ids, cases::end_at_unknown_term);
  });
  refusal.end(group_);
  blocks_.contents.fields.*column = into_blocks(group_, terms, piece.records.first, blocks_.cells);
}

bool SplitFiles::has_sediment() {
  const bool has_here = cases::has_sediment(blocks_.contents.fields.sediment);
  const auto of_ranks = gather_all_plain(group_, static_cast<std::uint8_t>(has_here));
  return std::any_of(of_ranks.begin(), of_ranks.end(), [](std::uint8_t has) { return has != 0; });
}

}  // namespace ranks
