#include "case/PartCutter.hpp"

#include <utility>

#include "case/entries_of.hpp"
#include "case/initial_state.hpp"
#include "physics/stable_step.hpp"

namespace cases {

namespace {

/// Copies what is not an array over the mesh.
template <class Value>
void copy(const Value& from, Value& to) {
  to = from;
}
void copy(const Mesh&, Mesh&) {}
void copy(const CellFields&, CellFields&) {}

void copy_fields(const CellFields& from, std::span<const Number> cells, CellFields& to) {
  CellFields::visit_parts(from, [&](const auto&... of_one) {
    CellFields::visit_parts(
        to, [&](auto&... of_other) { ((of_other = entries_of(of_one, cells)), ...); });
  });
}

}  // namespace

void copy_parameters(const Case& from, Case& to) {
  Case::visit_parts(from, [&](const auto&... of_one) {
    Case::visit_parts(to, [&](auto&... of_other) { (copy(of_one, of_other), ...); });
  });
}

CaseScales scales_of(const Case& contents) {
  CaseScales scales = {0.0, physics::unbounded_step};
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    scales.h0 = physics::larger(scales.h0, initial_water_of(contents, cell).h);
    scales.char_length_min =
        physics::smaller(scales.char_length_min, contents.mesh.geometry_of(cell).char_length());
  }
  return scales;
}

PartCutter::PartCutter(const Case& whole) : PartCutter(whole, scales_of(whole)) {}

PartCutter::PartCutter(const Case& whole, const CaseScales& scales)
    : whole_(whole),
      scales_(scales),
      first_edge_(at(whole.mesh.n_cells()) + 1, 0),
      local_cell_(at(whole.mesh.n_cells()), absent),
      local_node_(at(whole.mesh.n_nodes()), absent) {
  const Mesh& mesh = whole.mesh;
  const auto for_each_side = [&](const auto& visit) {
    for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
      const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
      visit(left, edge);
      if (right >= 0 && right != left) visit(right, edge);
    }
  };
  for_each_side([&](Number cell, Number) { ++first_edge_[at(cell) + 1]; });
  for (std::size_t cell = 1; cell < first_edge_.size(); ++cell) {
    first_edge_[cell] += first_edge_[cell - 1];
  }
  edges_of_cells_.resize(static_cast<std::size_t>(first_edge_.back()));
  std::vector<std::int64_t> next = first_edge_;
  for_each_side([&](Number cell, Number edge) {
    edges_of_cells_[static_cast<std::size_t>(next[at(cell)]++)] = edge;
  });
}

std::span<const Number> PartCutter::edges_of(Number cell) const {
  const auto begin = static_cast<std::size_t>(first_edge_[at(cell)]);
  const auto end = static_cast<std::size_t>(first_edge_[at(cell) + 1]);
  return std::span(edges_of_cells_).subspan(begin, end - begin);
}

Number PartCutter::across(Number edge, Number cell) const {
  const Number left = whole_.mesh.left[at(edge)];
  return left == cell ? whole_.mesh.right[at(edge)] : left;
}

Part PartCutter::part_of(std::span<const Number> own, int rings) {
  Part part = mesh_part_of(own, rings);
  copy_parameters(whole_, part.contents);
  return part;
}

Part PartCutter::mesh_part_of(std::span<const Number> own, int rings) {
  Part part;
  part.scales = scales_;
  number_cells(own, rings, part);
  find_border(rings, part);
  find_edges(part);
  part.node_number = number_nodes(part);
  copy_mesh(part);
  copy_boundaries(part);
  copy_fields(whole_.fields, part.cell_number, part.contents.fields);
  forget(part);
  return part;
}

void PartCutter::number_cells(std::span<const Number> own, int rings, Part& part) {
  std::vector<Number>& cells = part.cell_number;
  cells.assign(own.begin(), own.end());
  part.owned = static_cast<Number>(own.size());
  for (const Number cell : cells) local_cell_[at(cell)] = 0;  // here
  std::size_t ring_begin = 0;
  for (int ring = 0; ring < rings; ++ring) {
    const std::size_t ring_end = cells.size();
    for (std::size_t k = ring_begin; k < ring_end; ++k) {
      const Number cell = cells[k];
      for (const Number edge : edges_of(cell)) {
        const Number other = across(edge, cell);
        if (other < 0 || is_here(other)) continue;
        local_cell_[at(other)] = 0;
        cells.push_back(other);
      }
    }
    ring_begin = ring_end;
  }
  std::sort(cells.begin() + part.owned, cells.end());
  for (std::size_t k = 0; k < cells.size(); ++k) local_cell_[at(cells[k])] = static_cast<Number>(k);
}

/// Whom others reach in so many steps: the nearest of their cells lies within as many.
void PartCutter::find_border(int rings, Part& part) const {
  std::vector<std::uint8_t> is_found(part.cell_number.size(), 0);
  std::vector<Number> reached(part.cell_number.begin() + part.owned, part.cell_number.end());
  for (int step = 0; step < rings; ++step) {
    std::vector<Number> next;
    for (const Number cell : reached) {
      for (const Number edge : edges_of(cell)) {
        const Number other = across(edge, cell);
        if (other < 0 || !is_here(other)) continue;
        const Number local = local_cell_[at(other)];
        if (local >= part.owned || is_found[at(local)] != 0) continue;
        is_found[at(local)] = 1;
        next.push_back(other);
      }
    }
    reached = std::move(next);
  }
  for (Number cell = 0; cell < part.owned; ++cell) {
    if (is_found[at(cell)] != 0) part.border.push_back(cell);
  }
}

void PartCutter::find_edges(Part& part) const {
  for (const Number cell : part.cell_number) {
    for (const Number edge : edges_of(cell)) {
      const Number right = whole_.mesh.right[at(edge)];
      const bool is_left = whole_.mesh.left[at(edge)] == cell;
      if (is_left && (right < 0 || is_here(right))) part.edge_number.push_back(edge);
    }
  }
  std::sort(part.edge_number.begin(), part.edge_number.end());
}

std::vector<Number> PartCutter::number_nodes(const Part& part) {
  std::vector<Number> nodes;
  const auto take = [&](Number node) {
    if (local_node_[at(node)] != absent) return;
    local_node_[at(node)] = 0;
    nodes.push_back(node);
  };
  for (const Number cell : part.cell_number) {
    for (const Number node : whole_.mesh.nodes_of(cell)) take(node);
  }
  for (const Number edge : part.edge_number) {
    take(whole_.mesh.node1[at(edge)]);
    take(whole_.mesh.node2[at(edge)]);
  }
  std::sort(nodes.begin(), nodes.end());
  for (std::size_t k = 0; k < nodes.size(); ++k) local_node_[at(nodes[k])] = static_cast<Number>(k);
  return nodes;
}

void PartCutter::copy_mesh(Part& part) const {
  const Mesh& from = whole_.mesh;
  Mesh& to = part.contents.mesh;
  to.x = entries_of(from.x, part.node_number);
  to.y = entries_of(from.y, part.node_number);
  to.z = entries_of(from.z, part.node_number);
  std::vector<Number> nodes_of_cell;
  to.cell_nodes.reserve(3 * part.cell_number.size());
  for (const Number cell : part.cell_number) {
    nodes_of_cell.clear();
    for (const Number node : from.nodes_of(cell)) nodes_of_cell.push_back(local_node_[at(node)]);
    to.add_cell(nodes_of_cell);
  }
  const auto local_ends = [&](const std::vector<Number>& column, const std::vector<Number>& local) {
    std::vector<Number> ends = entries_of(column, part.edge_number);
    for (Number& end : ends) end = end < 0 ? end : local[at(end)];
    return ends;
  };
  to.left = local_ends(from.left, local_cell_);
  to.right = local_ends(from.right, local_cell_);
  to.node1 = local_ends(from.node1, local_node_);
  to.node2 = local_ends(from.node2, local_node_);
}

void PartCutter::copy_boundaries(Part& part) const {
  const std::vector<Boundary>& of_whole = whole_.mesh.boundaries;
  auto boundary = of_whole.begin();
  for (std::size_t edge = 0; edge < part.edge_number.size(); ++edge) {
    while (boundary != of_whole.end() && boundary->edge < part.edge_number[edge]) ++boundary;
    if (boundary == of_whole.end()) return;
    if (boundary->edge != part.edge_number[edge]) continue;
    part.boundary_number.push_back(static_cast<Number>(boundary - of_whole.begin()));
    part.contents.mesh.boundaries.push_back(*boundary);
    part.contents.mesh.boundaries.back().edge = static_cast<Number>(edge);
  }
}

void PartCutter::forget(const Part& part) {
  for (const Number cell : part.cell_number) local_cell_[at(cell)] = absent;
  for (const Number node : part.node_number) local_node_[at(node)] = absent;
}

}  // namespace cases
