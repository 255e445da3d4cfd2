// The tables of a run in the memory of a device, and the copies between the two. Machine is the
// device: Emulator, say.
#pragma once

#include <algorithm>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

#include "engine/Exchange.hpp"
#include "engine/device/CellCopies.hpp"
#include "engine/device/HllDeviceTables.hpp"
#include "engine/device/TableView.hpp"

namespace engine::device {

template <class Machine>
class DeviceTables {
 public:
  /// Copies what never changes.
  explicit DeviceTables(const Tables& tables) {
    const CellTable& c = tables.cells;
    max_node_.take(c.max_node);
    reciprocal_area_.take(c.reciprocal_area);
    char_length_.take(c.char_length);
    manning_.take(c.manning);
    rock_.take(c.rock);
    soil_.take(c.soil);
    const Patches& p = tables.patches;
    patch_views_.take(views_of(tables));
    outer_slots_.take(p.outer_slots);
    neighbours_.take(p.neighbours);
    if (!tables.hll) {
      for (std::size_t k = 0; k < 3; ++k) slots_[k].take(p.slots[k]);
      edges_.take(p.edges);
    }
    cut_edges_.take(p.cut_edges);
    edge_number_.take(p.edge_number);
    cut_edge_number_.take(p.cut_edge_number);
    soils_.take(tables.soils);
    for_each_outer_column(tables.outer,
                          [](Numbers& own, const Column& of_host) { own.take(of_host); });
    if (tables.hll) hll_.emplace(tables);
  }

  // What changes, in whole columns.
  void take_state(const Tables& tables) {
    for_each_column(tables.cells, [](Numbers& own, const Column& of_host) { own.take(of_host); });
    const auto& rain = tables.cells.rain;
    rain_.take(rain);
    rain_numbers_ = rain.empty() ? 0 : 1 + at(*std::max_element(rain.begin(), rain.end()));
    take_boundaries(tables);
    if (tables.maxima) {
      for_each_maximum(*tables.maxima,
                       [](Numbers& own, const Column& of_host) { own.take(of_host); });
    }
  }
  void take_boundaries(const Tables& tables) { boundaries_.take(tables.boundaries); }
  void give_state(Tables& tables) {
    const auto give = [](const Numbers& own, Column& of_host) { own.give(of_host); };
    for_each_column(tables.cells, give);
    for_each_outer_column(tables.outer, give);
    give_maxima(tables);
  }
  /// One of the columns of the cells.
  void give_column(Tables& tables, const Column& column) {
    for_each_column(tables.cells, [&](const Numbers& own, Column& of_host) {
      if (&of_host == &column) own.give(of_host);
    });
  }
  /// The slots of the boundaries.
  void give_inflows(Tables& tables) {
    const std::size_t first = at(tables.first_boundary_slot());
    const auto give = [&](const Numbers& own, Column& of_host) {
      if (!of_host.empty()) own.give(std::span(of_host).subspan(first), first);
    };
    give(outer_.mass, tables.outer.mass);
    give(outer_.bed, tables.outer.bed);
  }
  void give_maxima(Tables& tables) {
    if (!tables.maxima) return;
    for_each_maximum(*tables.maxima,
                     [](const Numbers& own, Column& of_host) { own.give(of_host); });
    tables.maxima->forget_hints();
  }

  /// One of the columns of the cells.
  CopiedColumn copied(const Column& column, Tables& tables) {
    CopiedColumn found = {};
    for_each_column(tables.cells, [&](const Numbers& own, Column& of_host) {
      if (&of_host == &column) found = {own.data(), &of_host};
    });
    if (found.of_host == nullptr) throw std::logic_error("The device has no such column.");
    return found;
  }
  /// Those of the state of a cell.
  std::vector<CopiedColumn> state_columns(Tables& tables) {
    std::vector<CopiedColumn> columns;
    const auto add = [&](const Numbers& own, Column& of_host) {
      if (!of_host.empty()) columns.push_back({own.data(), &of_host});
    };
    for_each_state_column(tables.cells, add);
    if (tables.has_bed) add(bed_, tables.cells.bed);
    return columns;
  }
  /// See for_each_halo_column.
  std::vector<double*> halo_columns(Tables& tables) {
    std::vector<double*> columns;
    for_each_halo_column(tables.cells, [&](const Column& of_host) {
      columns.push_back(copied(of_host, tables).own);
    });
    return columns;
  }
  /// Of a bed that moves.
  BedColumns laid_bed(const Tables& tables) const {
    if (!tables.has_bed) return {};
    return {rock_.data(), hs_.data(), bed_.data()};
  }
  /// From now on the free surface is bed and depth.
  void drop_given_surface() { eta_.resize(0); }

  /// Of a scheme of the HLL family: the states after a step come into force.
  void take_states_after() { hll_->swap_states(h_, qx_, qy_, hs_, bed_); }
  HllTableView hll_view() { return hll_->view(); }

  kernels::BoundaryEdge* boundaries() const { return boundaries_.data(); }
  /// See Patches::neighbours.
  const int* neighbours() const { return neighbours_.data(); }
  /// How many rains the cells name; none has the number 0.
  std::size_t rain_numbers() const { return rain_numbers_; }

  TableView view() {
    return {.cells = cells(),
            .patches = patch_views_.data(),
            .outer_slots = outer_slots_.data(),
            .edges = edges_.columns(),
            .cut_edges = cut_edges_.columns(),
            .edge_number = edge_number_.data(),
            .cut_edge_number = cut_edge_number_.data(),
            .cut_edge_count = static_cast<int>(cut_edges_.left.size()),
            .boundaries = boundaries_.data(),
            .outer = {outer_.mass.data(), outer_.momentum_x.data(), outer_.momentum_y.data(),
                      outer_.bed.data()},
            .soils = soils_.data(),
            .maxima = {.depth = maxima_.depth.data(),
                       .time_of_depth = maxima_.time_of_depth.data(),
                       .level = maxima_.level.data(),
                       .speed_squared = maxima_.speed_squared.data(),
                       .discharge_squared = maxima_.discharge_squared.data(),
                       .arrival = maxima_.arrival.data(),
                       .under_water_since = maxima_.under_water_since.data(),
                       .time_under_water = maxima_.time_under_water.data()}};
  }

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;
  using Numbers = Array<double>;

  template <class Index>
  struct Edges {
    Array<Index> left, right;
    Numbers nx, ny, length;

    void take(const EdgeTable<Index>& edges) {
      left.take(edges.left);
      right.take(edges.right);
      nx.take(edges.nx);
      ny.take(edges.ny);
      length.take(edges.length);
    }
    kernels::EdgeColumns<Index> columns() const {
      return {left.data(), right.data(), nx.data(), ny.data(), length.data()};
    }
  };
  struct OuterSlots {
    Numbers mass, momentum_x, momentum_y, bed;
  };
  /// See MaximaTable.
  struct Maxima {
    Numbers depth, time_of_depth, level, speed_squared, discharge_squared;
    Numbers arrival, under_water_since, time_under_water;
  };

  static std::vector<PatchView> views_of(const Tables& tables) {
    std::vector<PatchView> views;
    for (std::size_t p = 0; p < tables.patches.patches.size(); ++p) {
      const Patch& patch = tables.patches.patches[p];
      const bool has_soil = !tables.soils_of_patch.empty() && !tables.soils_of_patch[p].empty();
      views.push_back({.first_cell = patch.cells.begin,
                       .cells = patch.cells.size(),
                       .first_edge = patch.edges.begin,
                       .edges = patch.edges.size(),
                       .first_cut_edge = patch.cut_edges.begin,
                       .cut_edges = patch.cut_edges.size(),
                       .first_boundary = patch.boundaries.begin,
                       .boundaries = patch.boundaries.size(),
                       .first_outer_slot = patch.outer_slots.begin,
                       .outer_slots = patch.outer_slots.size(),
                       .first_neighbour = patch.neighbours.begin,
                       .neighbours = patch.neighbours.size(),
                       .right_slots = patch.right_slots(),
                       .has_soil = has_soil});
    }
    return views;
  }

  /// Calls visit(a column here, that of the host) for what a step changes of the cells, and the
  /// free surface, which is given only at first.
  template <class Cells, class Visit>
  void for_each_column(Cells& c, const Visit& visit) {
    for_each_state_column(c, visit);
    visit(max_h_, c.max_h);
    visit(bed_, c.bed);
    visit(infiltrated_, c.infiltrated);
  }
  /// Those on which the stable step of a cell depends, with the bed, and what it moves.
  template <class Cells, class Visit>
  void for_each_state_column(Cells& c, const Visit& visit) {
    visit(h_, c.h);
    visit(qx_, c.qx);
    visit(qy_, c.qy);
    visit(eta_, c.eta);
    visit(hs_, c.hs);
    visit(qsx_, c.qsx);
    visit(qsy_, c.qsy);
    visit(dqs_dh_, c.dqs_dh);
  }
  template <class OfHost, class Visit>
  void for_each_outer_column(OfHost& of_host, const Visit& visit) {
    visit(outer_.mass, of_host.mass);
    visit(outer_.momentum_x, of_host.momentum_x);
    visit(outer_.momentum_y, of_host.momentum_y);
    visit(outer_.bed, of_host.bed);
  }
  template <class OfHost, class Visit>
  void for_each_maximum(OfHost& of_host, const Visit& visit) {
    visit(maxima_.depth, of_host.depth);
    visit(maxima_.time_of_depth, of_host.time_of_depth);
    visit(maxima_.level, of_host.level);
    visit(maxima_.speed_squared, of_host.speed_squared);
    visit(maxima_.discharge_squared, of_host.discharge_squared);
    visit(maxima_.arrival, of_host.arrival);
    visit(maxima_.under_water_since, of_host.under_water_since);
    visit(maxima_.time_under_water, of_host.time_under_water);
  }

  kernels::CellColumns cells() {
    return {.h = h_.data(),
            .qx = qx_.data(),
            .qy = qy_.data(),
            .reciprocal = nullptr,
            .celerity = nullptr,
            .bed = bed_.data(),
            .eta = eta_.data(),
            .max_h = max_h_.data(),
            .max_node = max_node_.data(),
            .reciprocal_area = reciprocal_area_.data(),
            .char_length = char_length_.data(),
            .manning = manning_.data(),
            .infiltrated = infiltrated_.data(),
            .rain = rain_.data(),
            .soil = soil_.data(),
            .hs = hs_.data(),
            .qsx = qsx_.data(),
            .qsy = qsy_.data(),
            .dqs_dh = dqs_dh_.data(),
            .rock = rock_.data(),
            .slots = {slots(0), slots(1), slots(2)}};
  }

  const kernels::Local* slots(std::size_t k) const {
    return hll_ ? hll_->slots(k) : slots_[k].data();
  }

  // See CellTable.
  Numbers h_, qx_, qy_, eta_, max_h_, bed_, max_node_, reciprocal_area_, char_length_, manning_;
  Numbers infiltrated_, hs_, qsx_, qsy_, dqs_dh_, rock_;
  Array<int> rain_, soil_;

  Array<PatchView> patch_views_;
  Array<int> outer_slots_, neighbours_;
  std::size_t rain_numbers_ = 0;
  Array<kernels::Local> slots_[3];
  Edges<kernels::Local> edges_;
  Edges<int> cut_edges_;
  Array<int> edge_number_, cut_edge_number_;
  Array<kernels::BoundaryEdge> boundaries_;
  OuterSlots outer_;
  Array<Soil> soils_;
  Maxima maxima_;
  std::optional<HllDeviceTables<Machine>> hll_;
};

}  // namespace engine::device
