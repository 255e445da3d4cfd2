#include "model/HllWalk.hpp"

#include <algorithm>
#include <string>

#include "case/boundary_kinds.hpp"
#include "case/initial_state.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/hll_bed_flux.hpp"
#include "physics/hll_boundary.hpp"
#include "physics/hll_cell_state.hpp"
#include "physics/hll_cell_update.hpp"
#include "physics/hll_edge_flux.hpp"
#include "physics/stable_step.hpp"

namespace {

using cases::at;
using cases::Number;

physics::BoundaryFlux boundary_flux(const physics::HllBoundarySide& side, int code,
                                    double imposed) {
  if (code == edge_code::transmissive) return physics::hll_free_outflow(side);
  const cases::BoundaryKind& kind = *cases::boundary_kind(code);
  if (kind.imposes_discharge()) return physics::hll_discharge(side, imposed);
  if (kind.imposes_level()) return physics::hll_water_level(side, imposed);
  return physics::hll_wall(side);
}

/// Speed of the waves that a boundary may send into a cell, m/s.
double wave_speed_of(const cases::Boundary& boundary, double imposed, double bed) {
  const cases::BoundaryKind& kind = *cases::boundary_kind(boundary.code);
  if (kind.imposes_discharge()) return physics::wave_speed_of_discharge(imposed);
  if (kind.imposes_level()) return physics::wave_speed_of_level(imposed, bed);
  return 0.0;
}

}  // namespace

HllWalk::HllWalk(const cases::Case& contents)
    : case_(contents),
      sides_(cases::sides_for_hll(contents)),
      forcing_(contents),
      char_length_min_(physics::unbounded_step),
      boundary_inflow_(contents.mesh.boundaries.size()),
      boundary_bed_inflow_(contents.mesh.boundaries.size()) {
  const Number n_cells = contents.mesh.n_cells();
  for (Number cell = 0; cell < n_cells; ++cell) {
    cells_.push_back(cases::hll_cell_of(contents, sides_, cell));
    char_length_min_ = std::min(char_length_min_, contents.mesh.geometry_of(cell).char_length());
  }
  for (const cases::Boundary& boundary : contents.mesh.boundaries) {
    const cases::TriangleSides& sides = sides_[at(contents.mesh.left[at(boundary.edge)])];
    boundary_side_.push_back(cases::side_at_edge(sides, boundary.edge));
  }
  set_initial_water();
  primitive_.resize(at(n_cells));
  edges_.resize(at(n_cells));
  slots_.resize(at(n_cells));
  if (contents.has_sediments) lay_initial_sediment();
}

void HllWalk::set_initial_water() {
  const Number n_cells = case_.mesh.n_cells();
  for (Number cell = 0; cell < n_cells; ++cell) {
    const physics::InitialWater start = cases::initial_water_of(case_, cell);
    water_.h.push_back(start.h);
    water_.qx.push_back(start.qx);
    water_.qy.push_back(start.qy);
  }
  water_.max_h.assign(at(n_cells), 0.0);
  water_.infiltrated = case_.fields.infiltrated;
  water_.infiltrated.resize(at(n_cells), 0.0);
  water_.recovered.assign(at(n_cells), 0.0);
  water_.taken_discharge.assign(at(n_cells), 0.0);
}

void HllWalk::lay_initial_sediment() {
  const Number n_cells = case_.mesh.n_cells();
  water_.hs = case_.fields.sediment;
  for (std::vector<double>* column : {&water_.hs, &water_.qsx, &water_.qsy}) {
    column->resize(at(n_cells), 0.0);
  }
  beds_.resize(at(n_cells));
  bed_slots_.resize(at(n_cells));
  for (Number cell = 0; cell < n_cells; ++cell) {
    const physics::BedLoad load =
        physics::bed_load_of_sediment(bed_load(cell), water_.hs[at(cell)]);
    water_.qsx[at(cell)] = load.qsx;
    water_.qsy[at(cell)] = load.qsy;
  }
}

double HllWalk::bed(Number cell) const {
  const double rock = cells_[at(cell)].bed;
  return water_.hs.empty() ? rock : rock + water_.hs[at(cell)];
}

double HllWalk::manning(Number cell) const {
  return case_.fields.manning.empty() ? 0.0 : case_.fields.manning[at(cell)];
}

/// What the water of a cell can carry.
physics::BedLoad HllWalk::bed_load(Number cell) const {
  return physics::bed_load_in_water(primitive_water(cell), manning(cell),
                                    {case_.sediment.d50, case_.sediment.density}, case_.zero_depth);
}

// --- A step --------------------------------------------------------------------------------------

void HllWalk::advance(double t, double dt) {
  const Number n_cells = case_.mesh.n_cells();
  forcing_.begin_step(t, dt);
  for (Number cell = 0; cell < n_cells; ++cell) primitive_[at(cell)] = primitive_water(cell);
  for (Number cell = 0; cell < n_cells; ++cell) edges_[at(cell)] = edges_of(cell, dt);
  for (Number cell = 0; cell < static_cast<Number>(beds_.size()); ++cell) {
    beds_[at(cell)] = bed_of_step(cell, dt);
  }
  std::fill(slots_.begin(), slots_.end(), Slots{});
  std::fill(bed_slots_.begin(), bed_slots_.end(), std::array<double, 3>{});
  flux_between_cells();
  flux_over_boundaries(t + 0.5 * dt);
  for (Number cell = 0; cell < n_cells; ++cell) update(cell, dt);
  for (Number cell = 0; cell < static_cast<Number>(beds_.size()); ++cell) update_bed(cell, dt);
}

physics::PrimitiveWater HllWalk::primitive_water(Number cell) const {
  return physics::primitive_water<true>(water_.h[at(cell)], water_.qx[at(cell)],
                                        water_.qy[at(cell)], cells_[at(cell)].resistance,
                                        case_.zero_depth);
}

/// The water across a side of a cell; the cell itself where there is none.
physics::HllNeighbour HllWalk::neighbour(Number cell, int side) const {
  const Number across = sides_[at(cell)][at(side)].neighbour;
  const Number of = across >= 0 ? across : cell;
  return {primitive_[at(of)], bed(of)};
}

physics::HllCellEdges HllWalk::edges_of(Number cell, double dt) const {
  const cases::HllCellOfCase& of = cells_[at(cell)];
  const physics::HllNeighbour own = {primitive_[at(cell)], bed(cell)};
  if (case_.scheme == cases::Scheme::hll2) {
    return physics::hll_edges(own, neighbour(cell, 0), neighbour(cell, 1), neighbour(cell, 2),
                              of.cell, of.weights, dt, case_.zero_depth);
  }
  const physics::HllCellState state = physics::hll_cell_state(own, of.cell, dt);
  const auto at_side = [&](int k) {
    return physics::hll_edge_state(state, cases::edge_at_side(case_.mesh, cell, k));
  };
  return {at_side(0), at_side(1), at_side(2), {0.0, 0.0}};
}

physics::HllBed HllWalk::bed_of_step(Number cell, double dt) const {
  return physics::hll_bed(primitive_[at(cell)], bed_load(cell), water_.hs[at(cell)],
                          case_.sediment.porosity, cells_[at(cell)].cell, dt);
}

const physics::HllEdgeState& HllWalk::edge_state(Number cell, int side) const {
  const physics::HllCellEdges& edges = edges_[at(cell)];
  return side == 0 ? edges.k0 : side == 1 ? edges.k1 : edges.k2;
}

void HllWalk::flux_between_cells() {
  for (Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
    for (int k = 0; k < 3; ++k) {
      const cases::TriangleSide& side = sides_[at(cell)][at(k)];
      // Every edge once, from the cell that the file names first.
      if (side.neighbour < 0 || case_.mesh.left[at(side.edge)] != cell) continue;
      const physics::HllEdgeState& l = edge_state(cell, k);
      const physics::HllEdgeState& r = edge_state(side.neighbour, side.neighbour_side);
      const physics::Edge edge = cases::edge_at_side(case_.mesh, cell, k);
      const physics::SlotPair slots = physics::hll_edge_flux(l, r, edge, case_.zero_depth);
      slots_[at(cell)][at(k)] = slots.left;
      slots_[at(side.neighbour)][at(side.neighbour_side)] = slots.right;
      if (beds_.empty()) continue;
      const double bed =
          edge.length * physics::hll_bed_flux(l, beds_[at(cell)], r, beds_[at(side.neighbour)],
                                              edge, -slots.left.h / edge.length);
      bed_slots_[at(cell)][at(k)] = -bed;
      bed_slots_[at(side.neighbour)][at(side.neighbour_side)] = bed;
    }
  }
}

/// t: the time at which series are read, s.
void HllWalk::flux_over_boundaries(double t) {
  for (std::size_t b = 0; b < boundary_side_.size(); ++b) {
    const cases::Boundary& boundary = case_.mesh.boundaries[b];
    const Number cell = case_.mesh.left[at(boundary.edge)];
    const int k = boundary_side_[b];
    const physics::Edge edge = cases::edge_at_side(case_.mesh, cell, k);
    const physics::HllBoundarySide side =
        physics::hll_boundary_side(edge_state(cell, k), edge, case_.zero_depth);
    const physics::BoundaryFlux flux =
        boundary_flux(side, boundary.code, forcing_.imposed_by(boundary, t));
    const physics::WaterSlot slot = physics::hll_boundary_slot(side, edge, flux);
    slots_[at(cell)][at(k)] = slot;
    boundary_inflow_[b] = slot.h;
    if (beds_.empty()) continue;
    const double bed = -edge.length * bed_flux_of_boundary(b, edge);
    bed_slots_[at(cell)][at(k)] = bed;
    boundary_bed_inflow_[b] = bed;
  }
}

/// Per unit of length, m2/s, with the water that passes already.
double HllWalk::bed_flux_of_boundary(std::size_t number, const physics::Edge& edge) const {
  constexpr double no_sediment_fed = 0.0;
  const cases::Boundary& boundary = case_.mesh.boundaries[number];
  const Number cell = case_.mesh.left[at(boundary.edge)];
  const physics::HllBed& bed = beds_[at(cell)];
  const physics::HllEdgeState& water = edge_state(cell, boundary_side_[number]);
  const cases::BoundaryKind& kind = *cases::boundary_kind(boundary.code);
  if (boundary.code == edge_code::transmissive || kind.imposes_level()) {
    return physics::hll_bed_flux_open(water, bed, edge, -boundary_inflow_[number] / edge.length);
  }
  if (!kind.imposes_discharge()) return 0.0;
  return physics::hll_bed_flux_imposed(water, bed, edge, no_sediment_fed, case_.sediment.porosity,
                                       case_.zero_depth);
}

void HllWalk::update(Number number, double dt) {
  const std::size_t i = at(number);
  const cases::HllCellOfCase& of = cells_[i];
  const Slots& slots = slots_[i];
  const auto sum = [&](double physics::WaterSlot::*part) {
    return physics::sum_of_slots(slots[0].*part, slots[1].*part, slots[2].*part);
  };
  const physics::Infiltration soil =
      forcing_.infiltration(number, water_.h[i], water_.infiltrated[i]);
  water_.recovered[i] += water_.infiltrated[i] - soil.infiltrated;
  const physics::HllCellUpdate after =
      physics::update_hll<true>({.h = water_.h[i],
                                 .qx = water_.qx[i],
                                 .qy = water_.qy[i],
                                 .u = primitive_[i].u,
                                 .v = primitive_[i].v,
                                 .Fh = sum(&physics::WaterSlot::h),
                                 .Fqx = sum(&physics::WaterSlot::qx),
                                 .Fqy = sum(&physics::WaterSlot::qy),
                                 .source = edges_[i].source,
                                 .dt_over_area = dt * of.cell.reciprocal_area,
                                 .dt = dt,
                                 .rain = forcing_.rain_on(number),
                                 .infiltration_step = soil.demand,
                                 .infiltrated_depth = soil.infiltrated,
                                 .resistance = of.resistance},
                                case_.zero_depth);
  water_.h[i] = after.h;
  water_.qx[i] = after.qx;
  water_.qy[i] = after.qy;
  water_.infiltrated[i] = after.infiltrated_depth;
  water_.taken_discharge[i] += after.taken_discharge;
  water_.max_h[i] = std::max(water_.max_h[i], after.h);
}

void HllWalk::update_bed(Number cell, double dt) {
  const std::size_t i = at(cell);
  const std::array<double, 3>& slots = bed_slots_[i];
  water_.hs[i] =
      physics::balanced_sediment(water_.hs[i], physics::sum_of_slots(slots[0], slots[1], slots[2]),
                                 dt * cells_[i].cell.reciprocal_area);
  const physics::BedLoad load = physics::bed_load_of_sediment(bed_load(cell), water_.hs[i]);
  water_.qsx[i] = load.qsx;
  water_.qsy[i] = load.qsy;
}

// --- The stable step -----------------------------------------------------------------------------

HllWalk::StepBound HllWalk::step_bound(double t, Number before) const {
  double most = 0.0;
  Number cell = -1;
  const auto note = [&](double rate, Number of) {
    if (rate > most || (rate == most && rate > 0.0 && of == before)) {
      most = rate;
      cell = of;
    }
  };
  for (Number i = 0; i < case_.mesh.n_cells(); ++i) {
    note(physics::crossing_rate(primitive_water(i), cells_[at(i)].reciprocal_length,
                                case_.zero_depth),
         i);
    if (beds_.empty()) continue;
    const physics::BedLoad load = physics::bed_load_of_sediment(bed_load(i), water_.hs[at(i)]);
    note(physics::crossing_rate_with_bed(primitive_water(i), load, case_.sediment.porosity,
                                         cells_[at(i)].reciprocal_length),
         i);
  }
  for (const cases::Boundary& boundary : case_.mesh.boundaries) {
    const Number of = case_.mesh.left[at(boundary.edge)];
    const double speed = wave_speed_of(boundary, forcing_.imposed_by(boundary, t), bed(of));
    note(speed / case_.mesh.geometry_of(of).char_length(), of);
  }
  const double step = most > 0.0 ? 1.0 / most : physics::unbounded_step;
  return {physics::stable_step_domain(step, char_length_min_), cell};
}
