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

template <bool eta_given, class Index>
[[gnu::flatten]] void fluxes_of_water(const CellColumns& cells, const EdgeColumns<Index>& edges,
                                      const EdgeRange& range, const StepValues& step) {
  const SlotColumns left = range.left, right = range.right;
  const int count = range.end - range.begin;
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    const int e = range.begin + k;
    const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
    const EdgeSide L =
        side_of<eta_given>(cells, range.first_cell + edges.left[e], edge, step.zero_depth);
    const EdgeSide R =
        side_of<eta_given>(cells, range.first_cell + edges.right[e], edge, step.zero_depth);
    const physics::SlotPair slots = physics::flux_lhllc(L, R, edge);
    left.mass[k] = slots.left.h;
    left.momentum_x[k] = slots.left.qx;
    left.momentum_y[k] = slots.left.qy;
    right.mass[k] = slots.right.h;
    right.momentum_x[k] = slots.right.qx;
    right.momentum_y[k] = slots.right.qy;
  }
}

template <class Index>
bool fluxes_of_water(const CellColumns& cells, const EdgeColumns<Index>& edges,
                     const EdgeRange& range, const StepValues& step) {
  if (cells.eta != nullptr) {
    fluxes_of_water<true>(cells, edges, range, step);
  } else {
    fluxes_of_water<false>(cells, edges, range, step);
  }
  return true;
}

template <bool eta_given, class Index>
[[gnu::flatten]] bool fluxes_of_water_and_bed(const CellColumns& cells,
                                              const EdgeColumns<Index>& edges,
                                              const EdgeRange& range, const StepValues& step) {
  const SlotColumns left = range.left, right = range.right;
  const int count = range.end - range.begin;
  int exceptions = 0;
#pragma omp simd reduction(+ : exceptions)
  for (int k = 0; k < count; ++k) {
    const int e = range.begin + k;
    const int l = range.first_cell + edges.left[e], r = range.first_cell + edges.right[e];
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
    exceptions += (slots.left_hyperbolic ? 0 : 1) + (slots.right_hyperbolic ? 0 : 1);
  }
  return exceptions == 0;
}

template <class Index>
bool fluxes_of_water_and_bed(const CellColumns& cells, const EdgeColumns<Index>& edges,
                             const EdgeRange& range, const StepValues& step) {
  return cells.eta != nullptr ? fluxes_of_water_and_bed<true>(cells, edges, range, step)
                              : fluxes_of_water_and_bed<false>(cells, edges, range, step);
}

/// Sum of a column of slots over the slots of a cell, in their order.
double balance(const CellColumns& cells, int i, const double* slots) {
  return ((0.0 + slots[cells.slots[0][i]]) + slots[cells.slots[1][i]]) + slots[cells.slots[2][i]];
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

/// What the steps of a block need of its cells: the largest wave speeds (0: does not bound the
/// step), and what the next step may skip.
struct Block {
  static constexpr int size = 256;
  double wave_speeds[size];
  int dry_cells = 0;     ///< of depth up to the threshold
  int active_cells = 0;  ///< those that may change in a step without inflow
};

/// Stores what follows from the new depth and discharges of a cell.
void finish_cell(const CellColumns& cells, int i, double h, double qx, double qy, double qx_moving,
                 double qy_moving, double zero_depth, double& wave_speed) {
  const DepthTerms depth = physics::depth_terms(h, zero_depth);
  const physics::Maxima maxima = physics::updated_maxima(
      {cells.max_h[i], cells.max_u[i], cells.max_v[i]}, h, depth, qx_moving, qy_moving, zero_depth);
  cells.h[i] = h;
  cells.qx[i] = qx;
  cells.qy[i] = qy;
  cells.reciprocal[i] = depth.reciprocal;
  cells.celerity[i] = depth.celerity;
  cells.max_h[i] = maxima.h;
  cells.max_u[i] = maxima.u;
  cells.max_v[i] = maxima.v;
  wave_speed = physics::is_wet(h, zero_depth) ? physics::wave_speed(depth, qx, qy) : 0.0;
}

template <bool friction, bool rain, bool soil>
struct AdvanceWater {
  [[gnu::flatten]] static void block(const CellColumns& cells, const CellRange& range,
                                     const StepValues& step, int first, int count, Block& result) {
    int dry_cells = 0, active_cells = 0;
#pragma omp simd reduction(+ : dry_cells, active_cells)
    for (int k = 0; k < count; ++k) {
      const int i = first + k;
      const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
      const physics::SweCellUpdate after =
          physics::update_swe({.h = cells.h[i],
                               .qx = cells.qx[i],
                               .qy = cells.qy[i],
                               .Fh = balance(cells, i, range.slots.mass),
                               .Fqx = balance(cells, i, range.slots.momentum_x),
                               .Fqy = balance(cells, i, range.slots.momentum_y),
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
      finish_cell(cells, i, after.h, after.qx, after.qy, after.qx, after.qy, step.zero_depth,
                  result.wave_speeds[k]);
      if constexpr (soil) cells.infiltrated[i] = after.infiltrated_depth;
      dry_cells += after.h <= step.zero_depth ? 1 : 0;
      // A soil drinks even a film.
      active_cells += (soil ? after.h == 0.0 : after.h <= step.zero_depth) ? 0 : 1;
    }
    result.dry_cells += dry_cells;
    result.active_cells += active_cells;
  }
};

template <bool friction, bool rain, bool soil>
struct AdvanceWaterAndBed {
  [[gnu::flatten]] static void block(const CellColumns& cells, const CellRange& range,
                                     const StepValues& step, int first, int count, Block& result) {
    int dry_cells = 0;
#pragma omp simd reduction(+ : dry_cells)
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
                                 .Fh = balance(cells, i, range.slots.mass),
                                 .Fqx = balance(cells, i, range.slots.momentum_x),
                                 .Fqy = balance(cells, i, range.slots.momentum_y),
                                 .Fhs = balance(cells, i, range.slots.bed),
                                 .dt_over_area = step.dt * cells.reciprocal_area[i],
                                 .dt = step.dt,
                                 .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                                 .source_qx = source.qx,
                                 .source_qy = source.qy},
                                step.zero_depth);
      finish_cell(cells, i, after.h, after.qx, after.qy, after.qx_moving, after.qy_moving,
                  step.zero_depth, result.wave_speeds[k]);
      const physics::BedLoad load = physics::bed_load_of_cell(
          {after.h, after.qx, after.qy, after.hs, after.qsx, after.qsy},
          friction ? cells.manning[i] : 0.0, step.grains, step.zero_depth);
      cells.hs[i] = after.hs;
      cells.bed[i] = cells.rock[i] + after.hs;
      cells.qsx[i] = load.qsx;
      cells.qsy[i] = load.qsy;
      cells.dqs_dh[i] = load.dqs_dh;
      dry_cells += after.h <= step.zero_depth ? 1 : 0;
    }
    result.dry_cells += dry_cells;
    result.active_cells += count - dry_cells;
  }
};

/// The smallest of the steps so far and those of a block. The quotients are computed only where one
/// can be smaller: a product decides that, with a margin for its rounding.
double smallest_step(double smallest, const double* char_length, const double* wave_speeds,
                     int count) {
  const double bound = smallest * (1.0 + 1e-14);
  int below = 0;
#pragma omp simd reduction(+ : below)
  for (int k = 0; k < count; ++k) below += char_length[k] < bound * wave_speeds[k] ? 1 : 0;
  if (below == 0) return smallest;
  for (int k = 0; k < count; ++k) {
    const bool wet = wave_speeds[k] > 0.0;
    if (wet) smallest = physics::smaller(smallest, char_length[k] / wave_speeds[k]);
  }
  return smallest;
}

template <class Model>
Advance advance_cells(const CellColumns& cells, const CellRange& range, const StepValues& step,
                      double smallest) {
  int active_cells = 0;
  for (int first = range.begin; first < range.end; first += Block::size) {
    const int count = range.end - first < Block::size ? range.end - first : Block::size;
    Block block;
    Model::block(cells, range, step, first, count, block);
    smallest = smallest_step(smallest, cells.char_length + first, block.wave_speeds, count);
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
    .water = {fluxes_of_water<Local>, fluxes_of_water<int>, advance<AdvanceWater>},
    .water_and_bed = {fluxes_of_water_and_bed<Local>, fluxes_of_water_and_bed<int>,
                      advance<AdvanceWaterAndBed>}};

}  // namespace engine
