#include "engine/Tables.hpp"

#include <algorithm>

#include "physics/hll_bed_load.hpp"
#include "physics/stable_step.hpp"

namespace engine {

namespace {

template <class Value>
Value* data_or_null(AlignedVector<Value>& column) {
  return column.empty() ? nullptr : column.data();
}

}  // namespace

CellState CellTable::state_at(std::size_t place) const {
  const auto value = [&](const Column& column) { return column.empty() ? 0.0 : column[place]; };
  return {.h = h[place],
          .qx = qx[place],
          .qy = qy[place],
          .hs = value(hs),
          .qsx = value(qsx),
          .qsy = value(qsy),
          .dqs_dh = value(dqs_dh),
          .bed_level = bed[place],
          .water_level = eta.empty() ? bed[place] + h[place] : eta[place]};
}

void Slots::assign(std::size_t count, bool has_bed) {
  for (Column* column : {&mass, &momentum_x, &momentum_y}) column->assign(count, 0.0);
  if (has_bed) bed.assign(count, 0.0);
}

kernels::SlotColumns Slots::columns() {
  return {mass.data(), momentum_x.data(), momentum_y.data(), data_or_null(bed)};
}

kernels::CellColumns Tables::columns() {
  CellTable& c = cells;
  return {.h = c.h.data(),
          .qx = c.qx.data(),
          .qy = c.qy.data(),
          .reciprocal = nullptr,
          .celerity = nullptr,
          .bed = c.bed.data(),
          .eta = data_or_null(c.eta),
          .max_h = c.max_h.data(),
          .max_node = data_or_null(c.max_node),
          .reciprocal_area = c.reciprocal_area.data(),
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

int Tables::cell_of(cases::Number number) const {
  if (cell_number.empty()) return number;
  const auto found = std::lower_bound(cell_number.begin(), cell_number.end(), number);
  const bool is_here = found != cell_number.end() && *found == number;
  return is_here ? static_cast<int>(found - cell_number.begin()) : -1;
}

std::vector<int> Tables::places_of(std::span<const cases::Number> cells) const {
  std::vector<int> places;
  for (const cases::Number cell : cells) places.push_back(place[at(cell)]);
  return places;
}

void Tables::set_bed_from_sediment(const Range& places) {
  if (!has_bed) return;
  for (std::size_t i = at(places.begin); i < at(places.end); ++i) {
    cells.bed[i] = cells.rock[i] + cells.hs[i];
  }
}

double Tables::bed_crossing_rate_at(std::size_t i, const physics::PrimitiveWater& water) const {
  if (!has_bed || cells.manning.empty()) return 0.0;
  const physics::BedLoad load = physics::bed_load_of_sediment(
      physics::bed_load_in_water(water, cells.manning[i], grains, zero_depth), cells.hs[i]);
  return physics::crossing_rate_with_bed(water, load, porosity, hll->reciprocal_length[i]);
}

double Tables::stable_step_at(std::size_t i) const {
  const double h = cells.h[i], qx = cells.qx[i], qy = cells.qy[i];
  if (hll) {
    constexpr double no_resistance = 0.0;
    const physics::PrimitiveWater water =
        physics::primitive_water<false>(h, qx, qy, no_resistance, zero_depth);
    const double rate = physics::crossing_rate(water, hll->reciprocal_length[i], zero_depth);
    return physics::step_of_crossing_rate(physics::larger(rate, bed_crossing_rate_at(i, water)));
  }
  const bool is_dry = h <= zero_depth;
  return is_dry ? dry_step : physics::stable_step(h, qx, qy, cells.char_length[i], zero_depth);
}

std::size_t Tables::bytes() const {
  const CellTable& c = cells;
  const Patches& p = patches;
  return bytes_of(c.h, c.qx, c.qy, c.eta, c.max_h, c.bed, c.max_node, c.reciprocal_area,
                  c.char_length, c.manning, c.infiltrated, c.hs, c.qsx, c.qsy, c.dqs_dh, c.rock,
                  c.rain, c.soil) +
         bytes_of(shortest, place, border, cell_number, boundaries, boundary_place) +
         p.edges.bytes() + p.cut_edges.bytes() +
         bytes_of(p.edge_number, p.cut_edge_number, p.boundary_edge, p.slots[0], p.slots[1],
                  p.slots[2], p.patches, p.neighbours, p.outer_slots) +
         bytes_of(outer.mass, outer.momentum_x, outer.momentum_y, outer.bed) +
         (hll ? hll->bytes() : 0) + (maxima ? maxima->bytes() : 0);
}

}  // namespace engine
