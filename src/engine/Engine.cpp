// Set-up of the tables, and reading them back; the step is in engine_step.cpp.
#include "engine/Engine.hpp"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "engine/numbering.hpp"
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

/// Where each old entry has gone.
std::vector<int> inverse(const std::vector<int>& order) {
  std::vector<int> number(order.size());
  for (std::size_t k = 0; k < order.size(); ++k) number[at(order[k])] = static_cast<int>(k);
  return number;
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

template <class Vector>
std::size_t bytes_of(const Vector& column) {
  return column.capacity() * sizeof(typename Vector::value_type);
}

template <class Value>
Value* data_or_null(AlignedVector<Value>& column) {
  return column.empty() ? nullptr : column.data();
}

}  // namespace

SlotColumns Engine::Scratch::slots() {
  return {mass.data(), momentum_x.data(), momentum_y.data(), data_or_null(bed)};
}

Engine::Engine(ModelInput&& input, int threads)
    : kernels_(kernels_of_this_machine()),
      model_(input.has_bed ? kernels_.water_and_bed : kernels_.water),
      team_(threads),
      has_bed_(input.has_bed),
      watches_hyperbolicity_(input.has_bed),
      dry_step_(physics::stable_step_dry(input.char_length_min, input.h0, input.zero_depth)),
      char_length_min_(input.char_length_min),
      cells_(std::move(input.cells)),
      rain_(std::move(input.rain)),
      soils_(std::move(input.soils)) {
  step_.zero_depth = input.zero_depth;
  step_.dry_step = dry_step_;
  step_.porosity = input.porosity;
  step_.grains = input.grains;
  const int cells_per_patch = input.cells_per_patch > 0
                                  ? input.cells_per_patch
                                  : cells_per_patch_for(static_cast<int>(cells_.h.size()), threads);
  number_cells(std::exchange(input.x, {}), std::exchange(input.y, {}), cells_per_patch,
               input.edges);
  patches_ = make_patches(input.edges, cells_.slots, cells_per_patch);
  for (auto& slots : cells_.slots) slots = {};
  if (!has_bed_) patches_.edge_number = patches_.cut_edge_number = {};
  number_boundaries(input.boundaries, input.edges);
  derive_columns();
  prepare_scratch();
}

void Engine::number_cells(const std::vector<double>& x, const std::vector<double>& y,
                          int cells_per_patch, EdgeTable& edges) {
  const std::vector<int> order = order_by_swept_runs(x, y, cells_per_patch);
  cell_number_ = inverse(order);
  CellTable& c = cells_;
  for (Column* column :
       {&c.h, &c.qx, &c.qy, &c.eta, &c.max_h, &c.bed, &c.max_node, &c.area, &c.char_length, &c.manning, &c.infiltrated, &c.hs, &c.qsx, &c.qsy, &c.dqs_dh, &c.rock}) {
    reorder(*column, order);
  }
  for (AlignedVector<int>* column : {&c.rain, &c.soil, &c.slots[0], &c.slots[1], &c.slots[2]}) {
    reorder(*column, order);
  }
  for (int& left : edges.left) left = cell_number_[at(left)];
  for (int& right : edges.right) right = right >= 0 ? cell_number_[at(right)] : right;
}

void Engine::number_boundaries(const std::vector<BoundaryInput>& boundaries,
                               const EdgeTable& edges) {
  std::vector<int> input_number(edges.left.size(), -1);
  for (std::size_t b = 0; b < boundaries.size(); ++b) {
    input_number[at(boundaries[b].edge)] = static_cast<int>(b);
  }
  boundary_number_.resize(boundaries.size());
  for (const int edge : patches_.boundary_number) {
    const std::size_t e = at(edge);
    const BoundaryInput& input = boundaries[at(input_number[e])];
    boundary_number_[at(input_number[e])] = static_cast<int>(boundaries_.size());
    boundaries_.push_back({input.kind,
                           edges.left[e],
                           {edges.nx[e], edges.ny[e], edges.length[e]},
                           input.imposed,
                           input.imposed_bed});
  }
}

void Engine::derive_columns() {
  reciprocal_.reserve(cells_.h.size());
  celerity_.reserve(cells_.h.size());
  for (const double h : cells_.h) {
    const physics::DepthTerms depth = physics::depth_terms(h, step_.zero_depth);
    reciprocal_.push_back(depth.reciprocal);
    celerity_.push_back(depth.celerity);
  }
  for (double& area : cells_.area) area = 1.0 / area;
  for (std::size_t i = 0; i < cells_.char_length.size(); ++i) {
    if (i % cells_of_shortest == 0) shortest_.push_back(physics::unbounded_step);
    shortest_.back() = physics::smaller(shortest_.back(), cells_.char_length[i]);
  }

  const std::size_t patches = patches_.patches.size();
  can_change_.assign(patches, 1);  // the first step sets free surfaces and maxima everywhere
  always_active_.assign(patches, 0);
  has_rain_.assign(patches, 0);
  soil_steps_.resize(soils_.size());
  if (!soils_.empty()) soils_of_patch_.resize(patches);
  marks_.assign(patches, 0);
  for (std::size_t p = 0; p < patches; ++p) {
    const Patch& patch = patches_.patches[p];
    for (int b = patch.boundaries.begin; b < patch.boundaries.end; ++b) {
      const BoundaryKind kind = boundaries_[at(b)].kind;
      if (kind == BoundaryKind::discharge || kind == BoundaryKind::water_level) {
        always_active_[p] = 1;
      }
    }
    for (int i = patch.cells.begin; i < patch.cells.end; ++i) {
      if (!cells_.rain.empty() && cells_.rain[at(i)] > 0) has_rain_[p] = 1;
      if (cells_.soil.empty() || cells_.soil[at(i)] < 0) continue;
      const Soil& soil = soils_[at(cells_.soil[at(i)])];
      add_once(soils_of_patch_[p], cells_.soil[at(i)]);
      if ((soil.is_green_ampt ? soil.green_ampt.kr : soil.horton.kr) > 0.0) always_active_[p] = 1;
    }
  }
  rain_depths_.assign(rain_.size() + 1, 0.0);
}

void Engine::prepare_scratch() {
  std::size_t slots = 0, cells = 0;
  for (const Patch& patch : patches_.patches) {
    slots = std::max(slots, at(patch.empty_slot()) + 1);
    cells = std::max(cells, at(patch.cells.size()));
  }
  scratch_.resize(at(team_.size()));
  for (Scratch& scratch : scratch_) {
    for (Column* column : {&scratch.mass, &scratch.momentum_x, &scratch.momentum_y}) {
      column->assign(slots, 0.0);
    }
    if (has_bed_) scratch.bed.assign(slots, 0.0);
    if (!soils_.empty()) scratch.demand.assign(cells, 0.0);
  }
  const std::size_t outer = 2 * patches_.cut_edges.left.size() + boundaries_.size();
  for (Column* column : {&outer_mass_, &outer_momentum_x_, &outer_momentum_y_}) {
    column->assign(outer, 0.0);
  }
  if (has_bed_) outer_bed_.assign(outer, 0.0);
  active_.reserve(patches_.patches.size());
  with_fluxes_.reserve(patches_.patches.size());
}

CellColumns Engine::cell_columns() {
  CellTable& c = cells_;
  return {.h = c.h.data(),
          .qx = c.qx.data(),
          .qy = c.qy.data(),
          .reciprocal = reciprocal_.data(),
          .celerity = celerity_.data(),
          .bed = c.bed.data(),
          .eta = data_or_null(c.eta),
          .max_h = c.max_h.data(),
          .max_node = data_or_null(c.max_node),
          .reciprocal_area = c.area.data(),
          .char_length = c.char_length.data(),
          .shortest = shortest_.data(),
          .manning = data_or_null(c.manning),
          .infiltrated = data_or_null(c.infiltrated),
          .rain = data_or_null(c.rain),
          .hs = data_or_null(c.hs),
          .qsx = data_or_null(c.qsx),
          .qsy = data_or_null(c.qsy),
          .dqs_dh = data_or_null(c.dqs_dh),
          .rock = data_or_null(c.rock),
          .slots = {patches_.slots[0].data(), patches_.slots[1].data(), patches_.slots[2].data()}};
}

EdgeColumns<Local> Engine::patch_edge_columns() const {
  const PatchEdges& e = patches_.edges;
  return {e.left.data(), e.right.data(), e.nx.data(), e.ny.data(), e.length.data()};
}

EdgeColumns<int> Engine::cut_edge_columns() const {
  const EdgeTable& e = patches_.cut_edges;
  return {e.left.data(), e.right.data(), e.nx.data(), e.ny.data(), e.length.data()};
}

SlotColumns Engine::outer_slot_columns() {
  return {outer_mass_.data(), outer_momentum_x_.data(), outer_momentum_y_.data(),
          data_or_null(outer_bed_)};
}

void Engine::impose(int boundary, double value) {
  boundaries_[at(boundary_number_[at(boundary)])].imposed = value;
}

std::size_t Engine::bytes() const {
  const CellTable& c = cells_;
  const PatchEdges& e = patches_.edges;
  std::size_t sum = 0;
  const auto add = [&](const auto&... columns) { ((sum += bytes_of(columns)), ...); };
  add(c.h, c.qx, c.qy, c.eta, c.max_h, c.bed, c.max_node, c.area, c.char_length,
      c.manning, c.infiltrated, c.hs, c.qsx, c.qsy, c.dqs_dh, c.rock, c.rain, c.soil);
  add(reciprocal_, celerity_, shortest_, cell_number_, boundaries_, boundary_number_);
  add(e.left, e.right, e.nx, e.ny, e.length, patches_.edge_number, patches_.cut_edge_number);
  add(patches_.slots[0], patches_.slots[1], patches_.slots[2]);
  add(patches_.patches, patches_.neighbours, patches_.outer_slots, patches_.boundary_number);
  const EdgeTable& cut = patches_.cut_edges;
  add(cut.left, cut.right, cut.nx, cut.ny, cut.length);
  add(outer_mass_, outer_momentum_x_, outer_momentum_y_, outer_bed_);
  for (const Scratch& s : scratch_) add(s.mass, s.momentum_x, s.momentum_y, s.bed, s.demand);
  return sum;
}

StateColumns Engine::states() const {
  return {cells_.h.size(),  cells_.h.data(),    cells_.qx.data(),
          cells_.qy.data(), reciprocal_.data(), celerity_.data()};
}

int Engine::cell_at(int place) const {
  if (cell_at_place_.empty()) cell_at_place_ = inverse(cell_number_);
  return cell_at_place_[at(place)];
}

BoundaryInflow Engine::boundary_inflow(int boundary) const {
  const int number = boundary_number_[at(boundary)];
  const int cells_per_patch = patches_.patches.front().cells.size();
  // A patch that took no part in the step took nothing in; its slots are older.
  if (marks_[at(boundaries_[at(number)].cell / cells_per_patch)] == 0) return {0.0, 0.0};
  const std::size_t k = 2 * patches_.cut_edges.left.size() + at(number);
  return {outer_mass_[k], has_bed_ ? outer_bed_[k] : 0.0};
}

CellOutput Engine::cell(int model_cell) const {
  const std::size_t k = at(cell_number_[at(model_cell)]);
  const CellTable& c = cells_;
  const auto value = [&](const Column& column) { return column.empty() ? 0.0 : column[k]; };
  return {.h = c.h[k],
          .qx = c.qx[k],
          .qy = c.qy[k],
          .eta = c.eta.empty() ? c.bed[k] + c.h[k] : c.eta[k],
          .max_h = c.max_h[k],
          .infiltrated = value(c.infiltrated),
          .bed = c.bed[k],
          .hs = value(c.hs),
          .qsx = value(c.qsx),
          .qsy = value(c.qsy),
          .dqs_dh = value(c.dqs_dh)};
}

}  // namespace engine
