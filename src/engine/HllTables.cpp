#include "engine/HllTables.hpp"

#include <algorithm>

#include "case/hll_cell.hpp"
#include "engine/Tables.hpp"
#include "kernels/hll_bed.hpp"

namespace engine {

namespace {

/// Stores the bed loads of cells at the start.
void store_bed_loads(const kernels::CellColumns& cells, const Tables& tables, const Range& range) {
  kernels::StepValues step = {};
  step.zero_depth = tables.zero_depth;
  step.porosity = tables.porosity;
  step.grains = tables.grains;
  constexpr double any_length = 1.0, no_resistance = 0.0;
  for (int i = range.begin; i < range.end; ++i) {
    const physics::PrimitiveWater water = physics::primitive_water<false>(
        cells.h[i], cells.qx[i], cells.qy[i], no_resistance, tables.zero_depth);
    kernels::store_bed_load<true>(cells, i, water, cells.hs[i], any_length, step);
  }
}

}  // namespace

kernels::HllAfterColumns HllTables::after() {
  const bool has_bed = !hs.empty();
  return {h.data(),
          qx.data(),
          qy.data(),
          has_bed ? hs.data() : nullptr,
          has_bed ? bed.data() : nullptr,
          reciprocal_length.data()};
}

void HllTables::keep(const CellTable& cells, const Range& range) {
  const auto copy = [&](const Column& from, Column& to) {
    std::copy(from.begin() + range.begin, from.begin() + range.end, to.begin() + range.begin);
  };
  copy(cells.h, h);
  copy(cells.qx, qx);
  copy(cells.qy, qy);
  if (hs.empty()) return;
  copy(cells.hs, hs);
  copy(cells.bed, bed);
}

void HllTables::take_state_after(CellTable& cells) {
  cells.h.swap(h);
  cells.qx.swap(qx);
  cells.qy.swap(qy);
  if (hs.empty()) return;
  cells.hs.swap(hs);
  cells.bed.swap(bed);
}

std::size_t HllTables::bytes() const {
  std::size_t sum = bytes_of(patches, reciprocal_length, h, qx, qy, hs, bed);
  for (const HllPatch& p : patches) {
    sum += bytes_of(p.around, p.geometry, p.weights, p.neighbours[0], p.neighbours[1],
                    p.neighbours[2], p.slots[0], p.slots[1], p.slots[2], p.boundary_states) +
           p.edges.bytes();
  }
  return sum;
}

void make_hll_tables(const cases::Case& contents, const std::vector<int>& order, ThreadTeam& team,
                     Tables& tables) {
  HllTables& hll = *tables.hll;
  hll.second_order = contents.scheme == cases::Scheme::hll2;
  const std::vector<cases::TriangleSides> sides = cases::sides_for_hll(contents);
  for (Column* column : {&hll.h, &hll.qx, &hll.qy, &hll.reciprocal_length}) {
    column->resize(order.size());
  }
  if (tables.has_bed) {
    hll.hs.resize(order.size());
    hll.bed.resize(order.size());
  }
  hll.patches = make_hll_patches(contents, sides, tables, order, team, hll.reciprocal_length);
  for (std::size_t b = 0; b < tables.patches.boundary_edge.size(); ++b) {
    kernels::BoundaryEdge& boundary = tables.boundaries[b];
    const cases::Number cell = order[at(boundary.cell)];
    const int side = cases::side_at_edge(sides[at(cell)], tables.patches.boundary_edge[b]);
    boundary.edge = cases::edge_at_side(contents.mesh, cell, side);
  }
  const bool moves = tables.has_bed && !tables.cells.manning.empty();
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), hll.patches.size());
    for (int p = share.begin; p < share.end; ++p) {
      const Range cells = tables.patches.patches[at(p)].cells;
      hll.keep(tables.cells, cells);
      if (moves) store_bed_loads(tables.columns(), tables, cells);
    }
  });
}

}  // namespace engine
