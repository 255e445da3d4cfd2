#include "engine/Tables.hpp"

#include <algorithm>
#include <utility>

#include "engine/numbering.hpp"
#include "engine/runs.hpp"
#include "physics/stable_step.hpp"

namespace engine {

namespace {

/// Puts a column in a new order: entry k is the old entry order[k].
template <class Vector>
void reorder(Vector& column, const std::vector<int>& order) {
  if (column.empty()) return;
  Vector ordered;
  ordered.reserve(column.size());
  for (const int i : order) ordered.push_back(column[at(i)]);
  column = std::move(ordered);
}

/// Patches whose edges, states and slots stay in a core's second cache, and as many for every
/// thread; a multiple of a cache line of doubles, so that no two threads write to one.
int cells_per_patch_for(int cells, int threads) {
  constexpr int grain = cells_of_shortest;
  const int wanted = std::clamp(cells / 128, 1024, 4096);
  const int rounds = std::max(1, (cells + wanted * threads / 2) / (wanted * threads));
  const int patches = rounds * threads;
  return std::max(1, (cells + patches * grain - 1) / (patches * grain)) * grain;
}

void add_once(std::vector<int>& list, int value) {
  if (std::find(list.begin(), list.end(), value) == list.end()) list.push_back(value);
}

template <class Value>
Value* data_or_null(AlignedVector<Value>& column) {
  return column.empty() ? nullptr : column.data();
}

void number_cells(Tables& tables, const std::vector<double>& x, const std::vector<double>& y,
                  int cells_per_patch, EdgeTable& edges) {
  const std::vector<int> order = order_by_swept_runs(x, y, cells_per_patch);
  tables.cell_number = inverse(order);
  CellTable& c = tables.cells;
  for (Column* column :
       {&c.h, &c.qx, &c.qy, &c.eta, &c.max_h, &c.bed, &c.max_node, &c.area, &c.char_length,
        &c.manning, &c.infiltrated, &c.hs, &c.qsx, &c.qsy, &c.dqs_dh, &c.rock}) {
    reorder(*column, order);
  }
  for (AlignedVector<int>* column : {&c.rain, &c.soil, &c.slots[0], &c.slots[1], &c.slots[2]}) {
    reorder(*column, order);
  }
  for (int& left : edges.left) left = tables.cell_number[at(left)];
  for (int& right : edges.right) right = right >= 0 ? tables.cell_number[at(right)] : right;
}

void number_boundaries(Tables& tables, const std::vector<BoundaryInput>& boundaries,
                       const EdgeTable& edges) {
  std::vector<int> input_number(edges.left.size(), -1);
  for (std::size_t b = 0; b < boundaries.size(); ++b) {
    input_number[at(boundaries[b].edge)] = static_cast<int>(b);
  }
  tables.boundary_number.resize(boundaries.size());
  for (const int edge : tables.patches.boundary_number) {
    const std::size_t e = at(edge);
    const BoundaryInput& input = boundaries[at(input_number[e])];
    tables.boundary_number[at(input_number[e])] = static_cast<int>(tables.boundaries.size());
    tables.boundaries.push_back({input.kind,
                                 edges.left[e],
                                 {edges.nx[e], edges.ny[e], edges.length[e]},
                                 input.imposed,
                                 input.imposed_bed});
  }
}

void derive_columns(Tables& tables) {
  const CellTable& c = tables.cells;
  tables.reciprocal.reserve(c.h.size());
  tables.celerity.reserve(c.h.size());
  for (const double h : c.h) {
    const physics::DepthTerms depth = physics::depth_terms(h, tables.zero_depth);
    tables.reciprocal.push_back(depth.reciprocal);
    tables.celerity.push_back(depth.celerity);
  }
  tables.reciprocal_area = std::exchange(tables.cells.area, {});
  for (double& area : tables.reciprocal_area) area = 1.0 / area;
  for (std::size_t i = 0; i < c.char_length.size(); ++i) {
    if (i % cells_of_shortest == 0) tables.shortest.push_back(physics::unbounded_step);
    tables.shortest.back() = physics::smaller(tables.shortest.back(), c.char_length[i]);
  }
}

void list_soils(Tables& tables) {
  if (tables.soils.empty()) return;
  tables.soils_of_patch.resize(tables.patches.patches.size());
  for (std::size_t p = 0; p < tables.soils_of_patch.size(); ++p) {
    const Range cells = tables.patches.patches[p].cells;
    for (int i = cells.begin; i < cells.end; ++i) {
      const int soil = tables.cells.soil[at(i)];
      if (soil >= 0) add_once(tables.soils_of_patch[p], soil);
    }
  }
}

}  // namespace

void Slots::assign(std::size_t count, bool has_bed) {
  for (Column* column : {&mass, &momentum_x, &momentum_y}) column->assign(count, 0.0);
  if (has_bed) bed.assign(count, 0.0);
}

kernels::SlotColumns Slots::columns() {
  return {mass.data(), momentum_x.data(), momentum_y.data(), data_or_null(bed)};
}

Tables make_tables(ModelInput&& input, int threads) {
  Tables tables;
  tables.has_bed = input.has_bed;
  tables.zero_depth = input.zero_depth;
  tables.dry_step = physics::stable_step_dry(input.char_length_min, input.h0, input.zero_depth);
  tables.char_length_min = input.char_length_min;
  tables.porosity = input.porosity;
  tables.grains = input.grains;
  tables.cells = std::move(input.cells);
  tables.soils = std::move(input.soils);
  const int cells_per_patch =
      input.cells_per_patch > 0
          ? input.cells_per_patch
          : cells_per_patch_for(static_cast<int>(tables.cells.h.size()), threads);
  number_cells(tables, std::exchange(input.x, {}), std::exchange(input.y, {}), cells_per_patch,
               input.edges);
  tables.patches = make_patches(input.edges, tables.cells.slots, cells_per_patch);
  for (auto& slots : tables.cells.slots) slots = {};
  if (!tables.has_bed) tables.patches.edge_number = tables.patches.cut_edge_number = {};
  number_boundaries(tables, input.boundaries, input.edges);
  derive_columns(tables);
  list_soils(tables);
  tables.outer.assign(at(tables.first_boundary_slot()) + tables.boundaries.size(), tables.has_bed);
  return tables;
}

kernels::CellColumns Tables::columns() {
  CellTable& c = cells;
  return {.h = c.h.data(),
          .qx = c.qx.data(),
          .qy = c.qy.data(),
          .reciprocal = reciprocal.data(),
          .celerity = celerity.data(),
          .bed = c.bed.data(),
          .eta = data_or_null(c.eta),
          .max_h = c.max_h.data(),
          .max_node = data_or_null(c.max_node),
          .reciprocal_area = reciprocal_area.data(),
          .char_length = c.char_length.data(),
          .manning = data_or_null(c.manning),
          .infiltrated = data_or_null(c.infiltrated),
          .rain = data_or_null(c.rain),
          .soil = data_or_null(c.soil),
          .hs = data_or_null(c.hs),
          .qsx = data_or_null(c.qsx),
          .qsy = data_or_null(c.qsy),
          .dqs_dh = data_or_null(c.dqs_dh),
          .rock = data_or_null(c.rock),
          .slots = {patches.slots[0].data(), patches.slots[1].data(), patches.slots[2].data()}};
}

kernels::EdgeColumns<kernels::Local> Tables::patch_edges() const {
  const PatchEdges& e = patches.edges;
  return {e.left.data(), e.right.data(), e.nx.data(), e.ny.data(), e.length.data()};
}

kernels::EdgeColumns<int> Tables::cut_edge_columns() const {
  const EdgeTable& e = patches.cut_edges;
  return {e.left.data(), e.right.data(), e.nx.data(), e.ny.data(), e.length.data()};
}

std::size_t Tables::bytes() const {
  const CellTable& c = cells;
  const PatchEdges& e = patches.edges;
  const EdgeTable& cut = patches.cut_edges;
  return bytes_of(c.h, c.qx, c.qy, c.eta, c.max_h, c.bed, c.max_node, c.char_length, c.manning,
                  c.infiltrated, c.hs, c.qsx, c.qsy, c.dqs_dh, c.rock, c.rain, c.soil) +
         bytes_of(reciprocal_area, reciprocal, celerity, shortest, cell_number, boundaries,
                  boundary_number) +
         bytes_of(e.left, e.right, e.nx, e.ny, e.length, patches.edge_number,
                  patches.cut_edge_number) +
         bytes_of(patches.slots[0], patches.slots[1], patches.slots[2], patches.patches,
                  patches.neighbours, patches.outer_slots, patches.boundary_number) +
         bytes_of(cut.left, cut.right, cut.nx, cut.ny, cut.length) +
         bytes_of(outer.mass, outer.momentum_x, outer.momentum_y, outer.bed);
}

}  // namespace engine
