// Every formula of the flow on one random state, for a comparison of host and device.
#pragma once

#include <cmath>
#include <cstdint>

#include "physics/arithmetic.hpp"
#include "physics/bed_load_mpm.hpp"
#include "physics/boundary_discharge.hpp"
#include "physics/boundary_transmissive.hpp"
#include "physics/boundary_wall.hpp"
#include "physics/boundary_water_level.hpp"
#include "physics/cell_geometry.hpp"
#include "physics/cell_update.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/cell_update_swe.hpp"
#include "physics/edge_frame.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/flow_maxima.hpp"
#include "physics/flux_clhllc.hpp"
#include "physics/flux_lhllc.hpp"
#include "physics/friction_manning.hpp"
#include "physics/hll_bed_flux.hpp"
#include "physics/hll_bed_load.hpp"
#include "physics/hll_boundary.hpp"
#include "physics/hll_cell_state.hpp"
#include "physics/hll_cell_update.hpp"
#include "physics/hll_edge_flux.hpp"
#include "physics/hll_edge_states.hpp"
#include "physics/hll_limited_slope.hpp"
#include "physics/hll_triangle.hpp"
#include "physics/hll_water.hpp"
#include "physics/infiltration.hpp"
#include "physics/initial_water.hpp"
#include "physics/pointwise.hpp"
#include "physics/primitive_water.hpp"
#include "physics/rain.hpp"
#include "physics/section_discharge.hpp"
#include "physics/stable_step.hpp"
#include "physics/time_series.hpp"
#include "physics/wave_speeds_coupled.hpp"

namespace device_check {

inline constexpr double zero_depth = 1e-4;  // m
inline constexpr double porosity = 0.4;

/// The numbers that the formulas gave for one state.
struct Results {
  static constexpr int capacity = 160;
  double values[capacity];
  int count;
};

QM_HD inline void add(Results& results, double value) {
  // A result too many is an error of this file; the comparison sees it in the count.
  if (results.count < Results::capacity) results.values[results.count] = value;
  ++results.count;
}

QM_HD inline void add(Results& results, const physics::WaterSlot& slot) {
  add(results, slot.h);
  add(results, slot.qx);
  add(results, slot.qy);
}

/// Random numbers that depend on the state's number alone.
/// Source: Steele, Lea and Flood (2014), OOPSLA, for the mixing function.
struct Random {
  std::uint64_t state;
};

/// From low to high.
QM_HD inline double uniform(Random& random, double low, double high) {
  random.state += 0x9e3779b97f4a7c15U;
  std::uint64_t z = random.state;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
  z = z ^ (z >> 31);
  // Next to 1 the low bits of a double are a fraction.
  const double fraction = physics::number_of((z >> 12) | 0x3ff0000000000000U) - 1.0;
  return low + (high - low) * fraction;
}

/// A cell's water: in turn dry, thin, or up to 50 m deep, over an uneven bed.
QM_HD inline physics::CellWater random_water(Random& random) {
  const double kind = uniform(random, 0.0, 4.0);
  const double size = uniform(random, 0.0, 1.0);
  const double h = kind < 1.0 ? 0.0 : (kind < 2.0 ? 2e-3 * size : 50.0 * size * size * size);
  const double speed = uniform(random, 0.0, 8.0);
  const double qx = h * uniform(random, -speed, speed);
  const double qy = h * uniform(random, -speed, speed);
  const double zb = uniform(random, -1.0, 1.0);
  return {h, qx, qy, zb, zb + h};
}

QM_HD inline physics::CellSediment random_sediment(Random& random) {
  const double hs = uniform(random, 0.0, 2.0);
  const double qsx = uniform(random, -0.01, 0.01);
  const double qsy = uniform(random, -0.01, 0.01);
  return {hs, qsx, qsy, uniform(random, -0.01, 0.001)};
}

QM_HD inline physics::Edge random_edge(Random& random) {
  const double x = uniform(random, -1.0, 1.0);
  const double y = uniform(random, 0.1, 1.0);
  const double norm = std::sqrt(x * x + y * y);
  return {x / norm, y / norm, uniform(random, 0.1, 100.0)};
}

QM_HD inline void add_arithmetic(Results& results, Random& random) {
  const double x = physics::exponential(uniform(random, -46.0, 46.0));
  add(results, x);
  add(results, physics::exponential(uniform(random, -760.0, 760.0)));
  add(results, physics::natural_logarithm(x));
  add(results, physics::natural_logarithm(uniform(random, -0.1, 2.0)));
  add(results, physics::power_2_3(x));
  add(results, physics::power_minus_4_3(x, 1.0 / x));
}

QM_HD inline void add_fluxes(Results& results, Random& random, const physics::CellWater& left,
                             const physics::CellSediment& bed, const physics::Edge& edge) {
  const physics::CellWater right = random_water(random);
  const physics::SlotPair slots = physics::flux_lhllc(left, right, edge, zero_depth);
  add(results, slots.left);
  add(results, slots.right);
  const physics::CoupledSlotPair coupled =
      physics::flux_clhllc(left, bed, right, random_sediment(random), edge, porosity, zero_depth);
  add(results, coupled.left.water);
  add(results, coupled.right.water);
  add(results, coupled.left.hs);
  add(results, coupled.right.hs);
  add(results, coupled.left_radicand + 2.0 * coupled.right_radicand);
}

QM_HD inline void add_boundaries(Results& results, Random& random, const physics::CellWater& water,
                                 const physics::CellSediment& bed, const physics::Edge& edge) {
  using physics::boundary_slot;
  const physics::EdgeSide side = physics::to_edge_frame(water, edge, zero_depth);
  const double t = uniform(random, -1.0, 3.0);
  const double v0 = uniform(random, -9.0, 9.0);
  const double q = physics::interpolate_linear(t, 0.0, 2.0, v0, 1.0);
  const double qt = uniform(random, -1.0, 1.0);
  const double h = uniform(random, -0.5, 5.0);
  add(results, boundary_slot(edge, physics::boundary_wall(side, zero_depth)));
  add(results, boundary_slot(edge, physics::boundary_transmissive(side, zero_depth)));
  add(results, boundary_slot(edge, physics::boundary_discharge(side, q, qt, zero_depth)));
  add(results, boundary_slot(edge, physics::boundary_water_level(side, h, zero_depth)));
  add(results, physics::boundary_bed_flux(bed, edge, porosity));
  add(results, physics::add_edge_discharge(q, water.qx, water.qy, edge));
}

QM_HD inline void add_soils(Results& results, Random& random, double h) {
  const double Fmax = uniform(random, 0.0, 0.5);
  const double fill = uniform(random, -0.2, 1.2);
  const double F = fill < 0.0 ? 0.0 : fill * Fmax;
  const double D = uniform(random, -1e-4, 1e-4);
  const double dt = uniform(random, 1e-3, 10.0);
  const double kr = uniform(random, -1e-3, 1e-3);
  const physics::GreenAmptSoil loam = {uniform(random, 1e-7, 1e-4), uniform(random, 0.01, 0.4),
                                       uniform(random, 0.05, 0.4), Fmax, kr};
  const physics::HortonSoil meadow = {uniform(random, 1e-5, 1e-4), uniform(random, 1e-7, 1e-5),
                                      uniform(random, 0.0, 200.0), Fmax, kr};
  const physics::Infiltration a = physics::infiltration_green_ampt(loam, h, F, D, dt);
  const physics::Infiltration b = physics::infiltration_horton(meadow, h, F, D, dt);
  add(results, a.demand);
  add(results, a.infiltrated);
  add(results, b.demand);
  add(results, b.infiltrated);
}

QM_HD inline double rain_of(Results& results, Random& random) {
  const double times[] = {0.0, 10.0, 25.0};
  const double intensities[] = {1e-5, uniform(random, 0.0, 1e-4), 2e-5};
  const double t = uniform(random, 0.0, 40.0);
  const double before = t * uniform(random, 0.0, 1.0);
  const physics::RainAddition rain = physics::rain_addition(
      {times, intensities, 3, 2.0}, {before, t < 20.0 ? -1 : 1, 2.0}, t, 0.0, 40.0);
  add(results, rain.depth);
  add(results, rain.clock.rain_dt);
  add(results, physics::steady_rain(intensities[1], t));
  return rain.depth;
}

QM_HD inline void add_update(Results& results, Random& random, const physics::CellWater& water,
                             const physics::CellSediment& bed) {
  const bool wet = physics::is_wet(water.h, zero_depth);
  const double n = uniform(random, 0.01, 0.1);
  const double dt = uniform(random, 1e-4, 2.0);
  const double dt_over_area = dt / uniform(random, 0.1, 100.0);
  const double Fh = uniform(random, -1.0, 1.0);
  const double Fqx = uniform(random, -2.0, 2.0);
  const double Fqy = uniform(random, -2.0, 2.0);
  const double rain = rain_of(results, random);
  physics::MomentumSource friction = {0.0, 0.0};
  physics::BedLoad load = {false, 0.0, 0.0, 0.0};
  if (wet) {
    friction = physics::friction_manning(n, water.h, 1.0 / water.h, water.qx, water.qy);
    load = physics::bed_load_mpm(water.h, 1.0 / water.h, water.qx, water.qy, n, {0.001, 2.65});
  }
  add(results, friction.qx);
  add(results, friction.qy);
  add(results, load.moves);
  add(results, load.qsx);
  add(results, load.qsy);
  add(results, load.dqs_dh);

  const double demand = uniform(random, -1e-4, 1e-3);
  const physics::SweCellUpdate swe = physics::update_swe({.h = water.h,
                                                          .qx = water.qx,
                                                          .qy = water.qy,
                                                          .Fh = Fh,
                                                          .Fqx = Fqx,
                                                          .Fqy = Fqy,
                                                          .dt_over_area = dt_over_area,
                                                          .dt = dt,
                                                          .rain = rain,
                                                          .source_qx = friction.qx,
                                                          .source_qy = friction.qy,
                                                          .infiltration_step = demand,
                                                          .infiltrated_depth = 0.01,
                                                          .bed_rock_level = water.zb,
                                                          .max_node_level = water.zb + 0.2},
                                                         zero_depth);
  add(results, swe.h);
  add(results, swe.qx);
  add(results, swe.qy);
  add(results, swe.infiltrated_depth);
  add(results, swe.free_surface_level);

  const physics::ExnerCellUpdate exner = physics::update_exner({.h = water.h,
                                                                .qx = water.qx,
                                                                .qy = water.qy,
                                                                .hs = bed.hs,
                                                                .qsx = bed.qsx,
                                                                .qsy = bed.qsy,
                                                                .Fh = Fh,
                                                                .Fqx = Fqx,
                                                                .Fqy = Fqy,
                                                                .Fhs = 1e-3 * Fh,
                                                                .dt_over_area = dt_over_area,
                                                                .dt = dt,
                                                                .rain = rain,
                                                                .source_qx = friction.qx,
                                                                .source_qy = friction.qy},
                                                               zero_depth);
  add(results, exner.h);
  add(results, exner.qx);
  add(results, exner.qy);
  add(results, exner.hs);
  add(results, exner.qx_moving);

  const physics::Maxima maxima = physics::updated_maxima(
      {0.5, 0.5, 0.5}, swe.h, physics::depth_terms(swe.h, zero_depth), swe.qx, swe.qy, zero_depth);
  add(results, maxima.h);
  add(results, maxima.u);
  add(results, maxima.v);

  const physics::FlowExtremes extremes = physics::united(
      {},
      physics::extremes_of_state(swe.h, swe.qx, swe.qy, physics::depth_terms(swe.h, zero_depth)));
  add(results, extremes.speed_squared);
  add(results, physics::froude_number(extremes.speed_squared_per_depth));
  add(results, physics::is_film(swe.h, swe.qx, swe.qy, zero_depth) ? 1.0 : 0.0);
  physics::FlowMaxima kept;
  for (const double part : {0.5, 1.0, 0.1}) {
    kept = physics::with_state(kept, part, part * swe.h, swe.qx, part * swe.qy, water.zb,
                               zero_depth, 0.05);
  }
  const auto number = [](double value) { return value == value ? value : -1.0; };
  add(results, kept.depth);
  add(results, number(kept.time_of_depth) + number(kept.level));
  add(results, kept.speed_squared + kept.discharge_squared);
  add(results, number(kept.arrival) + physics::time_under_water_until(kept, dt));
  const double step = physics::stable_step(swe.h, swe.qx, swe.qy, dt, zero_depth);
  add(results, physics::stable_step_domain(step, dt));
  add(results, physics::stable_step_dry(dt, water.h, zero_depth));
}

QM_HD inline void add_geometry(Results& results, Random& random) {
  physics::PlanPoint corners[3] = {};
  physics::PlanPoint center = {0.0, 0.0};
  for (physics::PlanPoint& point : corners) {
    point = {uniform(random, 6e5, 6.0001e5), uniform(random, 5e6, 5.0001e6)};
    center = {center.x + point.x / 3.0, center.y + point.y / 3.0};
  }
  const auto corner = [&](int i) { return corners[i]; };
  const double area = physics::cell_area(3, center, corner);
  const double accurate = physics::cell_area_of_differences(3, corner);
  add(results, area);
  add(results, accurate);
  add(results, physics::twice_signed_cell_area(3, corner));
  add(results, physics::area_loss(area, accurate));
}

QM_HD inline void add_initial_water(Results& results, Random& random) {
  const double level = uniform(random, -1.0, 2.0);
  const double bed = level + uniform(random, -2.0 * zero_depth, zero_depth);
  const physics::InitialWater water =
      physics::initial_water(level, bed, uniform(random, -1.0, 1.0), 0.5, zero_depth);
  add(results, water.h);
  add(results, water.qx);
  add(results, water.qy);
}

QM_HD inline void add(Results& results, const physics::HllEdgeState& state) {
  add(results, state.h);
  add(results, state.e);
  add(results, state.u);
  add(results, state.v);
  add(results, state.cap);
}

QM_HD inline physics::HllNeighbour random_neighbour(Random& random) {
  const physics::CellWater water = random_water(random);
  const double resistance = physics::manning_resistance(uniform(random, 0.0, 0.1));
  return {physics::primitive_water<true>(water.h, water.qx, water.qy, resistance, zero_depth),
          water.zb};
}

/// A triangle of the second-order scheme among three others.
struct RandomHllCell {
  physics::HllCell cell;
  physics::SlopeWeights weights;
};

QM_HD inline RandomHllCell random_hll_cell(Random& random) {
  physics::PlanPoint corners[2][3] = {};
  for (physics::PlanPoint(&triangle)[3] : corners) {
    triangle[0] = {uniform(random, 6e5, 6.0001e5), uniform(random, 5e6, 5.0001e6)};
    triangle[1] = {triangle[0].x + uniform(random, 1.0, 2.0),
                   triangle[0].y + uniform(random, -0.5, 0.5)};
    triangle[2] = {triangle[0].x + uniform(random, 0.0, 1.0),
                   triangle[0].y + uniform(random, 1.0, 2.0)};
  }
  const physics::PlanPoint a = corners[0][0], b = corners[0][1], c = corners[0][2];
  const physics::HllTriangle shape = physics::hll_triangle(a, b, c);
  const physics::Edge wall = physics::edge_between(a, b);
  const auto corner = [&](int i) { return corners[0][i]; };
  const physics::PlanVector slope =
      physics::slope_of_plane({a.x, a.y, uniform(random, 0.0, 1.0)}, {b.x, b.y, 0.5},
                              {c.x, c.y, uniform(random, 0.0, 1.0)});
  return {{shape, slope, 2.0 / physics::twice_signed_area(a, b, c),
           physics::cell_perimeter(3, corner) / 3.0},
          physics::least_squares_weights(physics::to_mirror_image(shape.r0, wall),
                                         physics::between_centers(corners[0], corners[1]),
                                         {uniform(random, -2.0, 2.0), 1.0})};
}

QM_HD inline void add_hll_boundaries(Results& results, Random& random,
                                     const physics::HllEdgeState& state,
                                     const physics::Edge& edge) {
  const physics::HllBoundarySide side = physics::hll_boundary_side(state, edge, zero_depth);
  const double q = uniform(random, -9.0, 9.0);
  const double level = uniform(random, -1.0, 5.0);
  using physics::hll_boundary_slot;
  add(results, hll_boundary_slot(side, edge, physics::hll_wall(side)));
  add(results, hll_boundary_slot(side, edge, physics::hll_free_outflow(side)));
  add(results, hll_boundary_slot(side, edge, physics::hll_water_level(side, level)));
  add(results, hll_boundary_slot(side, edge, physics::hll_discharge(side, q)));
  add(results, physics::wave_speed_of_discharge(q));
  add(results, physics::wave_speed_of_level(level, side.bed));
}

QM_HD inline void add_hll_bed(Results& results, Random& random, const physics::HllCell& cell,
                              const physics::PrimitiveWater& l, const physics::PrimitiveWater& r,
                              const physics::Edge& edge) {
  const double n = uniform(random, 0.0, 0.1);
  const physics::Grains sand = {0.001, 2.65};
  const physics::BedLoad load = physics::bed_load_in_water(l, n, sand, zero_depth);
  const physics::HllBed bed_left =
      physics::hll_bed(l, load, uniform(random, 0.0, 0.5), porosity, cell, 0.1);
  const physics::HllBed bed_right =
      physics::hll_bed(r, physics::bed_load_in_water(r, n, sand, zero_depth),
                       uniform(random, -0.1, 0.5), porosity, cell, 0.1);
  const physics::HllEdgeState left = {l.h, l.h + 0.1, l.u, l.v, 0.0};
  const physics::HllEdgeState right = {r.h, r.h, r.u, r.v, 0.0};
  const double passing = uniform(random, -5.0, 5.0);
  add(results, bed_left.per_discharge + bed_left.gain);
  add(results, bed_left.reserve);
  add(results, physics::hll_bed_flux(left, bed_left, right, bed_right, edge, passing));
  add(results, physics::hll_bed_flux_open(left, bed_left, edge, passing));
  add(results,
      physics::hll_bed_flux_imposed(right, bed_right, edge, passing, porosity, zero_depth));
  const physics::BedLoad there = physics::bed_load_of_sediment(load, bed_left.hs);
  add(results, physics::crossing_rate_with_bed(l, there, porosity, 0.5));
}

QM_HD inline void add_second_order(Results& results, Random& random, const physics::Edge& edge) {
  const RandomHllCell cell = random_hll_cell(random);
  const physics::HllNeighbour own = random_neighbour(random);
  const physics::HllNeighbour n0 = random_neighbour(random), n1 = random_neighbour(random),
                              n2 = random_neighbour(random);
  const double dt = uniform(random, 1e-3, 1.0);
  const physics::HllCellEdges edges =
      physics::hll_edges(own, n0, n1, n2, cell.cell, cell.weights, dt, zero_depth);
  const physics::HllCellState flat = physics::hll_cell_state(n0, cell.cell, dt);
  const physics::HllEdgeState across = physics::hll_edge_state(flat, reversed(edge));
  add(results, edges.k0);
  add(results, edges.k1);
  add(results, edges.k2);
  add(results, across.cap);
  const physics::SlotPair slots = physics::hll_edge_flux(edges.k0, across, edge, zero_depth);
  add(results, slots.left);
  add(results, slots.right);
  add_hll_boundaries(results, random, edges.k1, edge);

  const physics::PrimitiveWater& w = own.water;
  const physics::HllCellUpdate after =
      physics::update_hll<true>({.h = w.h,
                                 .qx = w.h * w.u,
                                 .qy = w.h * w.v,
                                 .u = w.u,
                                 .v = w.v,
                                 .Fh = slots.left.h,
                                 .Fqx = slots.left.qx,
                                 .Fqy = slots.left.qy,
                                 .source = edges.source,
                                 .dt_over_area = dt * cell.cell.reciprocal_area,
                                 .dt = dt,
                                 .rain = uniform(random, 0.0, 1e-3),
                                 .infiltration_step = uniform(random, -1e-4, 1e-3),
                                 .infiltrated_depth = 0.01,
                                 .resistance = 1e-3},
                                zero_depth);
  add(results, after.h);
  add(results, after.qx);
  add(results, after.qy);
  add(results, after.infiltrated_depth);
  add(results, after.taken_discharge);
  add(results, physics::crossing_rate(w, uniform(random, 0.1, 10.0), zero_depth));
  add_hll_bed(results, random, cell.cell, w, n0.water, edge);
}

/// Every formula on the state of that number.
QM_HD inline Results every_formula(std::uint64_t number) {
  Results results = {};
  Random random = {number << 20};  // far from the numbers of the next state
  const physics::CellWater water = random_water(random);
  const physics::CellSediment bed = random_sediment(random);
  const physics::Edge edge = random_edge(random);
  add_arithmetic(results, random);
  add_fluxes(results, random, water, bed, edge);
  add_boundaries(results, random, water, bed, edge);
  add_soils(results, random, water.h);
  add_update(results, random, water, bed);
  add_geometry(results, random);
  add_initial_water(results, random);
  add_second_order(results, random, edge);
  return results;
}

}  // namespace device_check
