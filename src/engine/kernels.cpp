// The loops of a step, built once per instruction set: QUILLMERE_ISA_NAME names the table of
// functions that this build provides. The formulas are those of physics/, with the same bits.
#include "engine/views.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/cell_update_swe.hpp"
#include "physics/flux_clhllc.hpp"
#include "physics/flux_lhllc.hpp"
#include "physics/friction_manning.hpp"
#include "physics/stable_step.hpp"

namespace engine {
namespace {

using physics::CellSediment;
using physics::DepthTerms;
using physics::EdgeSide;

/// A cell in the frame of an edge. After a step the free surface is bed and depth; before the first
/// one it is as the run gives it.
template <bool eta_given>
EdgeSide side_of(const CellColumns& cells, int i, const physics::Edge& edge, double zero_depth) {
  const double h = cells.h[i];
  const double bed = cells.bed[i];
  return physics::to_edge_frame(
      {h, cells.qx[i], cells.qy[i], bed, eta_given ? cells.eta[i] : bed + h},
      {cells.reciprocal[i], cells.celerity[i]}, edge, zero_depth);
}

CellSediment sediment_of(const CellColumns& cells, int i) {
  return {cells.hs[i], cells.qsx[i], cells.qsy[i], cells.dqs_dh[i]};
}

/// Cells of a block of edges, in a type that gathers can use. Blocks stay in the first cache.
struct EdgeBlock {
  static constexpr int size = 256;
  int left[size], right[size];
};

template <class Index>
void stage(EdgeBlock& block, const EdgeColumns<Index>& edges, int first_cell, int first,
           int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    block.left[k] = first_cell + edges.left[first + k];
    block.right[k] = first_cell + edges.right[first + k];
  }
}

/// Fluxes of the edges [first, first + count), whose cells are staged, into the slots from 0 on.
template <bool eta_given>
struct FluxesOfWater {
  template <class Index>
  [[gnu::flatten]] static double block(CellColumns cells, EdgeColumns<Index> edges,
                                       const EdgeBlock& block, int first, int count,
                                       SlotColumns left, SlotColumns right, StepValues step) {
#pragma omp simd
    for (int k = 0; k < count; ++k) {
      const int e = first + k;
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const EdgeSide L = side_of<eta_given>(cells, block.left[k], edge, step.zero_depth);
      const EdgeSide R = side_of<eta_given>(cells, block.right[k], edge, step.zero_depth);
      const physics::SlotPair slots = physics::flux_lhllc(L, R, edge);
      left.mass[k] = slots.left.h;
      left.momentum_x[k] = slots.left.qx;
      left.momentum_y[k] = slots.left.qy;
      right.mass[k] = slots.right.h;
      right.momentum_x[k] = slots.right.qx;
      right.momentum_y[k] = slots.right.qy;
    }
    return 0.0;
  }
};

/// The same with the bed; returns the least radicand of the bed wave, 0 where none is negative.
template <bool eta_given>
struct FluxesOfWaterAndBed {
  template <class Index>
  [[gnu::flatten]] static double block(CellColumns cells, EdgeColumns<Index> edges,
                                       const EdgeBlock& block, int first, int count,
                                       SlotColumns left, SlotColumns right, StepValues step) {
    double least_radicand = 0.0;
#pragma omp simd reduction(min : least_radicand)
    for (int k = 0; k < count; ++k) {
      const int e = first + k;
      const int l = block.left[k], r = block.right[k];
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const physics::CoupledSlotPair slots = physics::flux_clhllc(
          side_of<eta_given>(cells, l, edge, step.zero_depth), sediment_of(cells, l),
          side_of<eta_given>(cells, r, edge, step.zero_depth), sediment_of(cells, r), edge,
          step.porosity, step.zero_depth);
      left.mass[k] = slots.left.water.h;
      left.momentum_x[k] = slots.left.water.qx;
      left.momentum_y[k] = slots.left.water.qy;
      left.bed[k] = slots.left.hs;
      right.mass[k] = slots.right.water.h;
      right.momentum_x[k] = slots.right.water.qx;
      right.momentum_y[k] = slots.right.water.qy;
      right.bed[k] = slots.right.hs;
      least_radicand = physics::smaller(least_radicand, slots.left_radicand);
      least_radicand = physics::smaller(least_radicand, slots.right_radicand);
    }
    return least_radicand;
  }
};

template <class Fluxes, class Index>
bool fluxes_by_blocks(const CellColumns& cells, const EdgeColumns<Index>& edges,
                      const EdgeRange& range, const StepValues& step) {
  double least_radicand = 0.0;
  EdgeBlock block;
  for (int first = range.begin; first < range.end; first += EdgeBlock::size) {
    const int count = range.end - first < EdgeBlock::size ? range.end - first : EdgeBlock::size;
    stage(block, edges, range.first_cell, first, count);
    const double radicand =
        Fluxes::block(cells, edges, block, first, count, range.left.from(first - range.begin),
                      range.right.from(first - range.begin), step);
    least_radicand = physics::smaller(least_radicand, radicand);
  }
  return least_radicand == 0.0;
}

template <template <bool> class Fluxes, class Index>
bool fluxes(const CellColumns& cells, const EdgeColumns<Index>& edges, const EdgeRange& range,
            const StepValues& step) {
  return cells.eta != nullptr ? fluxes_by_blocks<Fluxes<true>>(cells, edges, range, step)
                              : fluxes_by_blocks<Fluxes<false>>(cells, edges, range, step);
}

template <bool friction>
physics::MomentumSource friction_of(const CellColumns& cells, int i, double zero_depth) {
  if constexpr (!friction) return {0.0, 0.0};
  const double h = cells.h[i];
  const bool wet = physics::is_wet(h, zero_depth);
  const physics::MomentumSource source = physics::friction_manning(
      cells.manning[i], wet ? h : 1.0, cells.reciprocal[i], cells.qx[i], cells.qy[i]);
  return {wet ? source.qx : 0.0, wet ? source.qy : 0.0};
}

/// A block of cells: their slots, in a type that gathers can use, and what their step leaves.
struct CellBlock {
  static constexpr int size = 256;
  int slots[3][size];
  double wave_speeds[size];  ///< largest ones, m/s; 0: does not bound the step
  double max_h[size], max_u[size], max_v[size];
  int dry_cells = 0;     ///< of depth up to the threshold
  int active_cells = 0;  ///< those that may change in a step without inflow
  int new_maxima = 0;
};

void stage(CellBlock& block, const CellColumns& cells, int first, int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    for (int s = 0; s < 3; ++s) block.slots[s][k] = cells.slots[s][first + k];
  }
}

/// Sum of a column of slots over the slots of a cell, in their order.
double balance(const CellBlock& block, int k, const double* slots) {
  return ((0.0 + slots[block.slots[0][k]]) + slots[block.slots[1][k]]) + slots[block.slots[2][k]];
}

/// Stores what follows from the new depth and discharges of a cell; whether its maxima are new.
bool finish_cell(const CellColumns& cells, CellBlock& block, int i, int k, double h, double qx,
                 double qy, double qx_moving, double qy_moving, double zero_depth) {
  const DepthTerms depth = physics::depth_terms(h, zero_depth);
  const physics::Maxima before = {cells.max_h[i], cells.max_u[i], cells.max_v[i]};
  const physics::Maxima after =
      physics::updated_maxima(before, h, depth, qx_moving, qy_moving, zero_depth);
  cells.h[i] = h;
  cells.qx[i] = qx;
  cells.qy[i] = qy;
  cells.reciprocal[i] = depth.reciprocal;
  cells.celerity[i] = depth.celerity;
  block.max_h[k] = after.h;
  block.max_u[k] = after.u;
  block.max_v[k] = after.v;
  block.wave_speeds[k] = physics::is_wet(h, zero_depth) ? physics::wave_speed(depth, qx, qy) : 0.0;
  return after.h != before.h || after.u != before.u || after.v != before.v;
}

/// Maxima rarely change once a flood has passed: they are written where one of a block does.
void store_maxima(const CellColumns& cells, const CellBlock& block, int first, int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    cells.max_h[first + k] = block.max_h[k];
    cells.max_u[first + k] = block.max_u[k];
    cells.max_v[first + k] = block.max_v[k];
  }
}

template <bool friction, bool rain, bool soil>
struct AdvanceWater {
  [[gnu::flatten]] static void block(CellColumns cells, CellRange range, StepValues step, int first,
                                     int count, CellBlock& result) {
    int dry_cells = 0, active_cells = 0, new_maxima = 0;
#pragma omp simd reduction(+ : dry_cells, active_cells, new_maxima)
    for (int k = 0; k < count; ++k) {
      const int i = first + k;
      const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
      const physics::SweCellUpdate after =
          physics::update_swe({.h = cells.h[i],
                               .qx = cells.qx[i],
                               .qy = cells.qy[i],
                               .Fh = balance(result, k, range.slots.mass),
                               .Fqx = balance(result, k, range.slots.momentum_x),
                               .Fqy = balance(result, k, range.slots.momentum_y),
                               .dt_over_area = step.dt * cells.reciprocal_area[i],
                               .dt = step.dt,
                               .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                               .source_qx = source.qx,
                               .source_qy = source.qy,
                               .infiltration_step = soil ? range.demand[i - range.begin] : 0.0,
                               .infiltrated_depth = soil ? cells.infiltrated[i] : 0.0,
                               .bed_rock_level = cells.bed[i],
                               .max_node_level = cells.max_node[i]},
                              step.zero_depth);
      new_maxima += finish_cell(cells, result, i, k, after.h, after.qx, after.qy, after.qx,
                                after.qy, step.zero_depth)
                        ? 1
                        : 0;
      if constexpr (soil) cells.infiltrated[i] = after.infiltrated_depth;
      dry_cells += after.h <= step.zero_depth ? 1 : 0;
      // A soil drinks even a film.
      active_cells += (soil ? after.h == 0.0 : after.h <= step.zero_depth) ? 0 : 1;
    }
    result.new_maxima += new_maxima;
    result.dry_cells += dry_cells;
    result.active_cells += active_cells;
  }
};

template <bool friction, bool rain, bool soil>
struct AdvanceWaterAndBed {
  [[gnu::flatten]] static void block(CellColumns cells, CellRange range, StepValues step, int first,
                                     int count, CellBlock& result) {
    int dry_cells = 0, new_maxima = 0;
#pragma omp simd reduction(+ : dry_cells, new_maxima)
    for (int k = 0; k < count; ++k) {
      const int i = first + k;
      const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
      const physics::ExnerCellUpdate after =
          physics::update_exner({.h = cells.h[i],
                                 .qx = cells.qx[i],
                                 .qy = cells.qy[i],
                                 .hs = cells.hs[i],
                                 .qsx = cells.qsx[i],
                                 .qsy = cells.qsy[i],
                                 .Fh = balance(result, k, range.slots.mass),
                                 .Fqx = balance(result, k, range.slots.momentum_x),
                                 .Fqy = balance(result, k, range.slots.momentum_y),
                                 .Fhs = balance(result, k, range.slots.bed),
                                 .dt_over_area = step.dt * cells.reciprocal_area[i],
                                 .dt = step.dt,
                                 .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                                 .source_qx = source.qx,
                                 .source_qy = source.qy},
                                step.zero_depth);
      new_maxima += finish_cell(cells, result, i, k, after.h, after.qx, after.qy, after.qx_moving,
                                after.qy_moving, step.zero_depth)
                        ? 1
                        : 0;
      const physics::BedLoad load = physics::bed_load_of_cell(
          {after.h, after.qx, after.qy, after.hs, after.qsx, after.qsy}, cells.reciprocal[i],
          friction ? cells.manning[i] : 0.0, step.grains, step.zero_depth);
      cells.hs[i] = after.hs;
      cells.bed[i] = cells.rock[i] + after.hs;
      cells.qsx[i] = load.qsx;
      cells.qsy[i] = load.qsy;
      cells.dqs_dh[i] = load.dqs_dh;
      dry_cells += after.h <= step.zero_depth ? 1 : 0;
    }
    result.new_maxima += new_maxima;
    result.dry_cells += dry_cells;
    result.active_cells += count - dry_cells;
  }
};

/// Whether a cell of a block can lower the smallest step so far: it cannot where the shortest of
/// them, with the fastest wave of all, would not. The margin is for the rounding of the product.
bool can_be_smaller(double smallest, const CellColumns& cells, const double* wave_speeds, int first,
                    int count) {
  double fastest = 0.0;
#pragma omp simd reduction(max : fastest)
  for (int k = 0; k < count; ++k) fastest = physics::larger(fastest, wave_speeds[k]);
  double shortest = cells.shortest[first / cells_of_shortest];
  for (int k = cells_of_shortest; k < count; k += cells_of_shortest) {
    shortest = physics::smaller(shortest, cells.shortest[(first + k) / cells_of_shortest]);
  }
  return shortest < smallest * (1.0 + 1e-14) * fastest;
}

/// The smallest of the steps so far and those of a block.
double smallest_step(double smallest, const CellColumns& cells, const double* wave_speeds,
                     int first, int count) {
  if (!can_be_smaller(smallest, cells, wave_speeds, first, count)) return smallest;
  for (int k = 0; k < count; ++k) {
    const bool wet = wave_speeds[k] > 0.0;
    if (wet) smallest = physics::smaller(smallest, cells.char_length[first + k] / wave_speeds[k]);
  }
  return smallest;
}

/// Extremes of the states of the cells [begin, end).
[[gnu::flatten]] physics::FlowExtremes extremes_of(const CellColumns& given, int begin, int end) {
  const CellColumns cells = given;  // a copy, which the loop cannot change
  double fastest = 0.0, most_rapid = 0.0;
  int not_finite = 0;
#pragma omp simd reduction(max : fastest, most_rapid) reduction(+ : not_finite)
  for (int i = begin; i < end; ++i) {
    const physics::FlowExtremes of_cell = physics::extremes_of_state(
        cells.h[i], cells.qx[i], cells.qy[i], {cells.reciprocal[i], cells.celerity[i]});
    fastest = physics::larger(fastest, of_cell.speed_squared);
    most_rapid = physics::larger(most_rapid, of_cell.speed_squared_per_depth);
    not_finite += of_cell.not_finite;
  }
  return {fastest, most_rapid, not_finite};
}

template <class Model>
Advance advance_cells(const CellColumns& cells, const CellRange& range, const StepValues& step,
                      double smallest) {
  int active_cells = 0;
  for (int first = range.begin; first < range.end; first += CellBlock::size) {
    const int count = range.end - first < CellBlock::size ? range.end - first : CellBlock::size;
    CellBlock block;
    stage(block, cells, first, count);
    Model::block(cells, range, step, first, count, block);
    if (block.new_maxima > 0) store_maxima(cells, block, first, count);
    if (range.extremes != nullptr) {
      *range.extremes = physics::united(*range.extremes, extremes_of(cells, first, first + count));
    }
    smallest = smallest_step(smallest, cells, block.wave_speeds, first, count);
    if (block.dry_cells > 0) smallest = physics::smaller(smallest, step.dry_step);
    active_cells += block.active_cells;
  }
  return {smallest, active_cells == 0};
}

template <template <bool, bool, bool> class Model>
Advance advance(const CellColumns& cells, const CellRange& range, const StepValues& step,
                double smallest) {
  const int combination = (cells.manning != nullptr ? 4 : 0) +
                          (step.rain_depths != nullptr ? 2 : 0) + (range.demand != nullptr ? 1 : 0);
  switch (combination) {
    case 0:
      return advance_cells<Model<false, false, false>>(cells, range, step, smallest);
    case 1:
      return advance_cells<Model<false, false, true>>(cells, range, step, smallest);
    case 2:
      return advance_cells<Model<false, true, false>>(cells, range, step, smallest);
    case 3:
      return advance_cells<Model<false, true, true>>(cells, range, step, smallest);
    case 4:
      return advance_cells<Model<true, false, false>>(cells, range, step, smallest);
    case 5:
      return advance_cells<Model<true, false, true>>(cells, range, step, smallest);
    case 6:
      return advance_cells<Model<true, true, false>>(cells, range, step, smallest);
    default:
      return advance_cells<Model<true, true, true>>(cells, range, step, smallest);
  }
}

/// `infiltration` asks a soil for the demand of a cell of depth h and infiltrated depth F.
template <class Infiltration>
[[gnu::flatten]] void demand_of(const CellColumns& cells, const SoilRange& range,
                                const Infiltration& infiltration) {
  const int soil = range.soil;
  const int* const soils = range.soil_of_cell;
  const double* const depths = cells.h;
  double* const infiltrated = cells.infiltrated;
  double* const demand = range.demand;
#pragma omp simd
  for (int i = range.begin; i < range.end; ++i) {
    const physics::Infiltration of_cell = infiltration(depths[i], infiltrated[i]);
    const bool has_soil = soils[i] == soil;
    demand[i - range.begin] = has_soil ? of_cell.demand : demand[i - range.begin];
    infiltrated[i] = has_soil ? of_cell.infiltrated : infiltrated[i];
  }
}

void green_ampt(const CellColumns& cells, const SoilRange& range,
                const physics::GreenAmptSoil& given, const physics::SoilStep& step_given) {
  const physics::GreenAmptSoil soil = given;  // copies, which the loop cannot change
  const physics::SoilStep step = step_given;
  demand_of(cells, range, [soil, step](double h, double F) {
    return physics::infiltration_green_ampt(soil, step, h, F, 0.0);
  });
}

void horton(const CellColumns& cells, const SoilRange& range, const physics::HortonSoil& given,
            const physics::SoilStep& step_given) {
  const physics::HortonSoil soil = given;
  const physics::SoilStep step = step_given;
  demand_of(cells, range, [soil, step](double h, double F) {
    return physics::infiltration_horton(soil, step, h, F, 0.0);
  });
}

}  // namespace

#define QUILLMERE_NAME_TEXT_(name) #name
#define QUILLMERE_NAME_TEXT(name) QUILLMERE_NAME_TEXT_(name)
#define QUILLMERE_JOIN_(a, b) a##b
#define QUILLMERE_JOIN(a, b) QUILLMERE_JOIN_(a, b)

extern const Kernels QUILLMERE_JOIN(kernels_, QUILLMERE_ISA_NAME);
const Kernels QUILLMERE_JOIN(kernels_, QUILLMERE_ISA_NAME) = {
    .name = QUILLMERE_NAME_TEXT(QUILLMERE_ISA_NAME),
    .green_ampt = green_ampt,
    .horton = horton,
    .water = {fluxes<FluxesOfWater, Local>, fluxes<FluxesOfWater, int>, advance<AdvanceWater>},
    .water_and_bed = {fluxes<FluxesOfWaterAndBed, Local>, fluxes<FluxesOfWaterAndBed, int>,
                      advance<AdvanceWaterAndBed>}};

}  // namespace engine
