// The loops of a step, built once per instruction set: QUILLMERE_ISA_NAME names the table of
// functions that this build provides. The formulas are those of physics/, with the same bits.
#include "engine/views.hpp"
#include "physics/cell_update_swe.hpp"
#include "physics/friction_manning.hpp"

namespace engine {
namespace {

using physics::CellWater;

CellWater water(const CellColumns& cells, int i) {
  return {cells.h[i], cells.qx[i], cells.qy[i], cells.zb[i], cells.eta[i]};
}

void fluxes(const CellColumns& cells, const EdgeColumns& edges, double zero_depth, int begin,
            int end) {
  double* const __restrict mass = edges.mass;
  double* const __restrict momentum_x = edges.momentum_x;
  double* const __restrict momentum_y = edges.momentum_y;
#pragma omp simd
  for (int e = begin; e < end; ++e) {
    const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
    const physics::SlotPair slots = physics::flux_lhllc(
        water(cells, edges.left[e]), water(cells, edges.right[e]), edge, zero_depth);
    mass[e] = slots.left.h;
    momentum_x[2 * e] = slots.left.qx;
    momentum_x[2 * e + 1] = slots.right.qx;
    momentum_y[2 * e] = slots.left.qy;
    momentum_y[2 * e + 1] = slots.right.qy;
  }
}

struct Sum {
  double h = 0.0, qx = 0.0, qy = 0.0;
};

void add_slot(Sum& sum, const EdgeColumns& edges, int slot) {
  const double mass = edges.mass[slot >> 1];
  sum.h += (slot & 1) != 0 ? -mass : mass;
  sum.qx += edges.momentum_x[slot];
  sum.qy += edges.momentum_y[slot];
}

template <bool friction, bool rain, bool infiltration>
void advance_cell(const CellColumns& cells, const EdgeColumns& edges, const StepValues& step, int i,
                  double& stable_step) {
  Sum F;
  add_slot(F, edges, cells.slots[0][i]);
  add_slot(F, edges, cells.slots[1][i]);
  add_slot(F, edges, cells.slots[2][i]);

  const double h = cells.h[i];
  physics::MomentumSource source = {0.0, 0.0};
  if constexpr (friction) {
    const bool wet = physics::is_wet(h, step.zero_depth);
    source = physics::friction_manning(cells.manning[i], wet ? h : 1.0, cells.qx[i], cells.qy[i]);
    source = {wet ? source.qx : 0.0, wet ? source.qy : 0.0};
  }
  const physics::SweCellUpdate after =
      physics::update_swe({.h = h,
                           .qx = cells.qx[i],
                           .qy = cells.qy[i],
                           .Fh = F.h,
                           .Fqx = F.qx,
                           .Fqy = F.qy,
                           .dt_over_area = step.dt / cells.area[i],
                           .dt = step.dt,
                           .rain = rain ? cells.rain[i] : 0.0,
                           .source_qx = source.qx,
                           .source_qy = source.qy,
                           .infiltration_step = infiltration ? cells.demand[i] : 0.0,
                           .infiltrated_depth = infiltration ? cells.infiltrated[i] : 0.0,
                           .bed_rock_level = cells.zb[i],
                           .max_node_level = cells.max_node[i]},
                          step.zero_depth);
  const physics::Maxima maxima =
      physics::updated_maxima({cells.max_h[i], cells.max_u[i], cells.max_v[i]}, after.h, after.qx,
                              after.qy, step.zero_depth);
  cells.h[i] = after.h;
  cells.qx[i] = after.qx;
  cells.qy[i] = after.qy;
  cells.eta[i] = after.free_surface_level;
  cells.max_h[i] = maxima.h;
  cells.max_u[i] = maxima.u;
  cells.max_v[i] = maxima.v;
  if constexpr (rain) cells.rain[i] = 0.0;
  if constexpr (infiltration) {
    cells.infiltrated[i] = after.infiltrated_depth;
    cells.demand[i] = 0.0;
  }
  const double wet_step =
      physics::stable_step(after.h, after.qx, after.qy, cells.char_length[i], step.zero_depth);
  stable_step = after.h <= step.zero_depth ? step.dry_step : wet_step;
}

/// The smallest of a block of steps; lanes keep their own, as the order does not matter.
double smallest(const double* steps, int count) {
  constexpr int lanes = 8;
  double smallest_of[lanes];
  for (double& s : smallest_of) s = physics::unbounded_step;
  int i = 0;
  for (; i + lanes <= count; i += lanes) {
    for (int k = 0; k < lanes; ++k) {
      smallest_of[k] = physics::smaller(smallest_of[k], steps[i + k]);
    }
  }
  for (; i < count; ++i) smallest_of[0] = physics::smaller(smallest_of[0], steps[i]);
  double result = smallest_of[0];
  for (const double s : smallest_of) result = physics::smaller(result, s);
  return result;
}

template <bool friction, bool rain, bool infiltration>
double advance_cells(const CellColumns& cells, const EdgeColumns& edges, const StepValues& step,
                     int begin, int end) {
  constexpr int block = 256;
  double steps[block];
  double result = physics::unbounded_step;
  for (int first = begin; first < end; first += block) {
    const int count = end - first < block ? end - first : block;
#pragma omp simd
    for (int k = 0; k < count; ++k) {
      advance_cell<friction, rain, infiltration>(cells, edges, step, first + k, steps[k]);
    }
    result = physics::smaller(result, smallest(steps, count));
  }
  return result;
}

double advance(const CellColumns& cells, const EdgeColumns& edges, Sources sources,
               const StepValues& step, int begin, int end) {
  const int combination =
      (sources.friction ? 4 : 0) + (sources.rain ? 2 : 0) + (sources.infiltration ? 1 : 0);
  switch (combination) {
    case 0:
      return advance_cells<false, false, false>(cells, edges, step, begin, end);
    case 1:
      return advance_cells<false, false, true>(cells, edges, step, begin, end);
    case 2:
      return advance_cells<false, true, false>(cells, edges, step, begin, end);
    case 3:
      return advance_cells<false, true, true>(cells, edges, step, begin, end);
    case 4:
      return advance_cells<true, false, false>(cells, edges, step, begin, end);
    case 5:
      return advance_cells<true, false, true>(cells, edges, step, begin, end);
    case 6:
      return advance_cells<true, true, false>(cells, edges, step, begin, end);
    default:
      return advance_cells<true, true, true>(cells, edges, step, begin, end);
  }
}

}  // namespace

#define QUILLMERE_NAME_TEXT_(name) #name
#define QUILLMERE_NAME_TEXT(name) QUILLMERE_NAME_TEXT_(name)
#define QUILLMERE_JOIN_(a, b) a##b
#define QUILLMERE_JOIN(a, b) QUILLMERE_JOIN_(a, b)

extern const Kernels QUILLMERE_JOIN(kernels_, QUILLMERE_ISA_NAME);
const Kernels QUILLMERE_JOIN(kernels_, QUILLMERE_ISA_NAME) = {
    QUILLMERE_NAME_TEXT(QUILLMERE_ISA_NAME), fluxes, advance};

}  // namespace engine
