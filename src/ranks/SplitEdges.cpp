#include "ranks/SplitEdges.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "case/SeriesFiles.hpp"
#include "case/boundary_kinds.hpp"
#include "case/edge_faults.hpp"
#include "case/finite_geometry.hpp"
#include "case/mesh_records.hpp"
#include "case/read_mesh.hpp"
#include "case/read_series.hpp"
#include "ranks/SendPlan.hpp"
#include "ranks/read_piece.hpp"
#include "ranks/split_files.hpp"
#include "ranks/values.hpp"

namespace ranks {

namespace {

/// Reads edges and does nothing with them.
template <class Source>
void pass_over(Source& file, const cases::Records& records, const CaseBlocks& blocks) {
  cases::Mesh edges;
  cases::read_edge_run(
      file, records, blocks.nodes.total(), blocks.cells.total(), edges, [](int) {},
      [](const cases::EdgeRecord&) {});
}

}  // namespace

void Remarks::add(cases::EdgeRemark remark) {
  if (counts[remark.kind]++ < utils::RepeatedWarning::shown) first.push_back(std::move(remark));
}

Number SplitEdges::read(const std::string& name, int scheme) {
  cases::Mesh& edges = blocks_.edges_here;
  piece_ = share_counted_file(group_, name, cases::shape_of_edges, cases::tokens_of_edge);
  read_records(name, scheme);
  read_series();
  take_corners();
  check_geometry(name);
  const std::int64_t refused = refusal_.record_of_all(group_);
  remark_on_edges(refused);
  if (refused == FirstRefusal::none) remark_on_cells();
  tell_remarks();
  refusal_.end(group_);
  blocks_.edges = Blocks(group_, edges.n_edges());
  const Blocks boundaries(group_, static_cast<Number>(edges.boundaries.size()));
  blocks_.first_boundary = boundaries.begin(group_.rank());
  return blocks_.edges.total();
}

void SplitEdges::read_records(const std::string& name, int scheme) {
  cases::Mesh& edges = blocks_.edges_here;
  std::vector<cases::Series> named;
  cases::SeriesFiles numbers(named);
  const auto take = [&](const cases::EdgeRecord& edge) {
    const Number number = piece_.records.first + edges.n_edges();
    cases::require_known(edge.code == edge_code::interior ? scheme : edge.code, number,
                         blocks_.contents.has_sediments);
    const int series = numbers.number_of(edge.file, [&](const std::string& file) {
      series_.push_back({file, number});
      return cases::Series{};
    });
    cases::add_edge(edges, edge, series);
  };
  read_piece(name, piece_, refusal_, [&](auto& file) {
    cases::read_edge_run(
        file, piece_.records, blocks_.nodes.total(), blocks_.cells.total(), edges, [](int) {},
        take);
  });
}

void SplitEdges::read_series() {
  const std::int64_t refused = refusal_.record_of_all(group_);
  std::vector<cases::Series>& series = blocks_.contents.series;
  const auto of_ranks =
      exchange_values(group_, std::map<int, std::vector<NamedSeries>>{{0, std::move(series_)}});
  std::map<int, std::vector<int>> numbers;
  cases::SeriesFiles files(series);
  Number edge = FirstRefusal::at_start;
  const auto read_all = [&] {
    for (const auto& of_rank : of_ranks) {
      for (const NamedSeries& named : of_rank.second) {
        if (named.edge >= refused) return;
        edge = named.edge;
        numbers[of_rank.first].push_back(files.number_of(named.file, cases::read_series));
      }
    }
  };
  refusal_.keep(read_all, [&] { return edge; });
  if (group_.rank() == 0) {
    broadcast_out(group_, series);
  } else {
    broadcast_in(group_, series);
  }
  for (const auto& [rank_0, of_case] : exchange_values(group_, std::move(numbers))) {
    for (cases::Boundary& boundary : blocks_.edges_here.boundaries) {
      const auto here = static_cast<std::size_t>(boundary.series);
      if (boundary.series >= 0 && here < of_case.size()) boundary.series = of_case[here];
    }
  }
}

void SplitEdges::take_corners() {
  const cases::Mesh& edges = blocks_.edges_here;
  nodes_ = NumberSet({edges.node1, edges.node2});
  corners_ = corners_of(group_, blocks_, nodes_.numbers());
}

physics::PlanPoint SplitEdges::corner(Number node) const {
  const std::size_t k = at(nodes_.place_of(node));
  return {corners_.x[k], corners_.y[k]};
}

void SplitEdges::check_geometry(const std::string& name) {
  const cases::Mesh& edges = blocks_.edges_here;
  for (Number edge = 0; edge < edges.n_edges(); ++edge) {
    const Number a = edges.node1[at(edge)], b = edges.node2[at(edge)];
    if (std::isfinite(physics::edge_between(corner(a), corner(b)).length)) continue;
    cases::Mesh mesh;
    mesh.x = corners_.x;
    mesh.y = corners_.y;
    mesh.z = corners_.z;
    const Number ends[] = {nodes_.place_of(a), nodes_.place_of(b)};
    refuse_record(
        name, piece_, piece_.records.first + edge, cases::overflow_of(mesh, ends), refusal_,
        [&](auto& file, const cases::Records& up_to_it) { pass_over(file, up_to_it, blocks_); });
    return;
  }
}

void SplitEdges::remark_on_edges(std::int64_t refused) {
  const cases::Mesh& edges = blocks_.edges_here;
  const cases::Mesh& mesh = blocks_.contents.mesh;
  std::vector<double> x(at(mesh.n_cells())), y(x.size());  // of the centres of the cells here
  for (std::size_t k = 0; k < x.size(); ++k) {
    const physics::SpacePoint center = mesh.center_of(static_cast<Number>(k));
    x[k] = center.x;
    y[k] = center.y;
  }
  const NumberSet cells({edges.left});
  const SendPlan plan = SendPlan::of_wanted(group_, cells.numbers(), blocks_.cells);
  x = plan.send(x);
  y = plan.send(y);

  auto boundary = edges.boundaries.begin();
  for (Number edge = 0; edge < edges.n_edges(); ++edge) {
    const Number number = piece_.records.first + edge;
    if (number >= refused) return;
    const bool is_boundary = boundary != edges.boundaries.end() && boundary->edge == edge;
    const Number left = edges.left[at(edge)], right = edges.right[at(edge)];
    const std::size_t k = at(cells.place_of(left));
    const cases::EdgeFaults faults =
        cases::faults_of(corner(edges.node1[at(edge)]), corner(edges.node2[at(edge)]),
                         {x[k], y[k], 0.0}, is_boundary, right >= 0);
    for (auto& remark :
         cases::remarks_on_edge(number, faults, left, right, is_boundary ? &*boundary : nullptr)) {
      remarks_.add(std::move(remark));
    }
    if (is_boundary) ++boundary;
  }
}

void SplitEdges::remark_on_cells() {
  const cases::Mesh& edges = blocks_.edges_here;
  const NumberSet set({edges.left, edges.right});
  std::vector<int> sides(set.size(), 0);
  for (const auto* column : {&edges.left, &edges.right}) {
    for (const Number cell : *column) {
      if (cell >= 0) ++sides[at(set.place_of(cell))];
    }
  }
  std::vector<Number> cells = set.numbers();
  const SendPlan plan(group_, static_cast<Number>(cells.size()), [&](Number k, const auto& visit) {
    visit(blocks_.cells.owner_of(cells[at(k)]));
  });
  cells = plan.send(cells);
  sides = plan.send(sides);
  const Number first = blocks_.cells.begin(group_.rank());
  std::vector<int> counts(at(blocks_.cells.size(group_.rank())), 0);
  for (std::size_t k = 0; k < cells.size(); ++k) counts[at(cells[k] - first)] += sides[k];
  for (std::size_t k = 0; k < counts.size(); ++k) {
    const Number cell = first + static_cast<Number>(k);
    for (auto& remark : cases::remarks_on_edges_of_cell(cell, counts[k])) {
      remarks_.add(std::move(remark));
    }
  }
}

void SplitEdges::tell_remarks() {
  const auto of_ranks = exchange_values(group_, std::map<int, Remarks>{{0, std::move(remarks_)}});
  cases::EdgeWarnings warnings(diagnostics_);
  std::array<std::int64_t, cases::EdgeRemark::kinds> untold{};
  const auto tell_first = [&](bool on_cells) {
    for (const auto& [sender, remarks] : of_ranks) {
      for (const cases::EdgeRemark& remark : remarks.first) {
        if ((remark.kind == cases::EdgeRemark::odd_cell) != on_cells) continue;
        warnings.add(remark);
        --untold[remark.kind];
      }
    }
  };
  tell_first(false);
  tell_first(true);
  for (const auto& [sender, remarks] : of_ranks) {
    for (std::size_t kind = 0; kind < untold.size(); ++kind) untold[kind] += remarks.counts[kind];
  }
  for (std::size_t kind = 0; kind < untold.size(); ++kind) {
    for (; untold[kind] > 0; --untold[kind]) {
      warnings.add({static_cast<cases::EdgeRemark::Kind>(kind), ""});
    }
  }
}

}  // namespace ranks
