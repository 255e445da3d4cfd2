#include "ranks/read_share.hpp"

#include <map>
#include <utility>

#include "case/EndAtFirstError.hpp"
#include "ranks/SplitFiles.hpp"
#include "ranks/cut_blocks.hpp"
#include "ranks/mesh_rows_of_blocks.hpp"
#include "ranks/share_of_blocks.hpp"

namespace ranks {

namespace {

CaseBlocks read_blocks(Group& group, const std::string& data_file,
                       const cases::Listeners& listeners, cases::Diagnostics& diagnostics,
                       cases::DataFile& data) {
  CaseBlocks blocks;
  SplitFiles files(group, diagnostics, blocks);
  cases::read_case(data_file, files, listeners, diagnostics, blocks.contents, data);
  return blocks;
}

/// Of the whole case.
cases::InputSums input_sums_of(Group& group, const CaseBlocks& blocks) {
  const int rank = group.rank();
  cases::InputSums own, all;
  own.add_nodes(blocks.nodes.begin(rank), blocks.corners.x, blocks.corners.y, blocks.corners.z);
  own.add_cells(blocks.cells.begin(rank), blocks.contents.mesh, blocks.node_number);
  own.add_fields(blocks.cells.begin(rank), blocks.contents.fields);
  own.add_edges(blocks.edges.begin(rank), blocks.edges_here, blocks.first_boundary);
  for (const cases::InputSums& sums : gather_all_plain(group, own)) all.add(sums);
  return all;
}

cases::ImplausibleFields implausible_in_all(Group& group, const cases::Part& part) {
  cases::ImplausibleFields all;
  std::map<int, cases::ImplausibleFields> own = {{0, cases::implausible_fields(part)}};
  for (const auto& [rank, found] : exchange_values(group, std::move(own))) all.add(found);
  return all;
}

}  // namespace

ReadShare read_share(Group& group, const std::string& data_file, const cases::Listeners& listeners,
                     cases::Diagnostics& diagnostics) {
  ReadShare read;
  CaseBlocks blocks;
  if (group.rank() == 0) {
    blocks = read_blocks(group, data_file, listeners, diagnostics, read.data);
  } else {
    cases::WithoutWarnings silent;  // rank 0 gives the same
    blocks = read_blocks(group, data_file, cases::NoListeners().listeners(), silent, read.data);
  }
  read.area_loss = blocks.area_loss;
  read.counts = {blocks.nodes.total(), blocks.cells.total(), blocks.edges.total()};
  read.input_sums = input_sums_of(group, blocks);
  if (read.data.results) {
    read.mesh_rows = mesh_rows_of_blocks(group, blocks, {read.data.origin[0], read.data.origin[1]});
  }
  read.cells = blocks.cells;
  read.owners = owners_along_curve(group, blocks);
  const int rings = cases::rings_of(blocks.contents.scheme);
  read.share = share_of_blocks(group, std::move(blocks), read.owners, rings);
  read.implausible = implausible_in_all(group, read.share.part);
  return read;
}

}  // namespace ranks
