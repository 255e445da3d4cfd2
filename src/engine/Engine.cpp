#include "engine/Engine.hpp"

#include <algorithm>
#include <cstdint>

#include "engine/numbering.hpp"
#include "physics/boundary_discharge.hpp"
#include "physics/boundary_transmissive.hpp"
#include "physics/boundary_wall.hpp"
#include "physics/boundary_water_level.hpp"

namespace engine {

namespace {

/// Share of a range that a member of the team takes, cut at multiples of a cache line of doubles.
struct Share {
  int begin, end;
};

Share share_of(int member, int members, int count) {
  constexpr int grain = 64;
  const int grains = (count + grain - 1) / grain;
  const auto cut = [&](int m) {
    return std::min(count, grain * static_cast<int>(static_cast<long long>(grains) * m / members));
  };
  return {cut(member), cut(member + 1)};
}

std::size_t at(int i) { return static_cast<std::size_t>(i); }

/// Puts a column in a new order: entry k is the old entry order[k]. A column that the run does not
/// need stays empty.
template <class Value>
void reorder(std::vector<Value>& column, const std::vector<int>& order) {
  if (column.empty()) return;
  std::vector<Value> ordered;
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

}  // namespace

Engine::Engine(ModelInput&& input, int threads)
    : kernels_(kernels_of_this_machine()),
      team_(threads),
      zero_depth_(input.zero_depth),
      dry_step_(physics::stable_step_dry(input.char_length_min, input.h0, input.zero_depth)),
      char_length_min_(input.char_length_min),
      sources_{.friction = !input.cells.manning.empty(),
               .rain = !input.rain.empty(),
               .infiltration = !input.infiltration.empty()},
      cells_(std::move(input.cells)),
      edges_(std::move(input.edges)),
      rain_terms_(std::move(input.rain)),
      infiltration_terms_(std::move(input.infiltration)),
      smallest_steps_(at(team_.size()), physics::unbounded_step) {
  number_cells(input.x, input.y);
  number_edges();
  number_sources();
}

void Engine::number_cells(const std::vector<double>& x, const std::vector<double>& y) {
  const std::vector<int> order = order_along_hilbert_curve(x, y);
  cell_number_ = inverse(order);
  CellTable& c = cells_;
  for (auto* column : {&c.h, &c.qx, &c.qy, &c.eta, &c.max_h, &c.max_u, &c.max_v, &c.zb, &c.max_node,
                       &c.area, &c.char_length, &c.manning, &c.infiltrated}) {
    reorder(*column, order);
  }
  for (std::vector<int>& slots : c.slots) reorder(slots, order);
}

void Engine::number_edges() {
  EdgeTable& e = edges_;
  for (int& left : e.left) left = cell_number_[at(left)];
  for (int& right : e.right) right = right >= 0 ? cell_number_[at(right)] : right;

  // Interior edges first, in the order of their lower cell; then the boundaries.
  std::vector<std::uint64_t> keys;
  keys.reserve(e.left.size());
  for (std::size_t i = 0; i < e.left.size(); ++i) {
    const bool is_boundary = e.right[i] < 0;
    const int right = is_boundary ? e.left[i] : e.right[i];
    const auto lower = static_cast<std::uint64_t>(std::min(e.left[i], right));
    const auto upper = static_cast<std::uint64_t>(std::max(e.left[i], right));
    keys.push_back((is_boundary ? std::uint64_t{1} << 63 : 0) | lower << 31 | upper);
  }
  const std::vector<int> order = order_by_key(keys);
  edge_number_ = inverse(order);
  reorder(e.left, order);
  reorder(e.right, order);
  for (auto* column : {&e.nx, &e.ny, &e.length, &e.imposed}) reorder(*column, order);
  reorder(e.kind, order);
  interior_edges_ = static_cast<int>(
      std::count_if(e.right.begin(), e.right.end(), [](int right) { return right >= 0; }));

  // One edge more, which never carries anything, for slots that no edge fills.
  const std::size_t n = e.left.size();
  const int no_flux = 2 * static_cast<int>(n);
  mass_.assign(n + 1, 0.0);
  momentum_x_.assign(2 * (n + 1), 0.0);
  momentum_y_.assign(2 * (n + 1), 0.0);
  for (std::vector<int>& slots : cells_.slots) {
    for (int& slot : slots) {
      slot = slot >= 0 ? 2 * edge_number_[at(slot >> 1)] + (slot & 1) : no_flux;
    }
  }
}

void Engine::number_sources() {
  for (RainInput& term : rain_terms_) term.cell = cell_number_[at(term.cell)];
  for (InfiltrationInput& term : infiltration_terms_) term.cell = cell_number_[at(term.cell)];
  if (sources_.rain) rain_.assign(cells_.h.size(), 0.0);
  if (sources_.infiltration) demand_.assign(cells_.h.size(), 0.0);
}

CellColumns Engine::cell_columns() {
  return {.h = cells_.h.data(),
          .qx = cells_.qx.data(),
          .qy = cells_.qy.data(),
          .eta = cells_.eta.data(),
          .max_h = cells_.max_h.data(),
          .max_u = cells_.max_u.data(),
          .max_v = cells_.max_v.data(),
          .zb = cells_.zb.data(),
          .max_node = cells_.max_node.data(),
          .area = cells_.area.data(),
          .char_length = cells_.char_length.data(),
          .manning = cells_.manning.data(),
          .rain = rain_.data(),
          .demand = demand_.data(),
          .infiltrated = cells_.infiltrated.data(),
          .slots = {cells_.slots[0].data(), cells_.slots[1].data(), cells_.slots[2].data()}};
}

EdgeColumns Engine::edge_columns() {
  return {.left = edges_.left.data(),
          .right = edges_.right.data(),
          .nx = edges_.nx.data(),
          .ny = edges_.ny.data(),
          .length = edges_.length.data(),
          .mass = mass_.data(),
          .momentum_x = momentum_x_.data(),
          .momentum_y = momentum_y_.data()};
}

void Engine::fluxes() {
  const CellColumns cells = cell_columns();
  const EdgeColumns edges = edge_columns();
  team_.run([&](int member) {
    const Share interior = share_of(member, team_.size(), interior_edges_);
    kernels_.fluxes(cells, edges, zero_depth_, interior.begin, interior.end);
    const int boundary_edges = static_cast<int>(edges_.left.size()) - interior_edges_;
    const Share outer = share_of(member, team_.size(), boundary_edges);
    for (int b = outer.begin; b < outer.end; ++b) flux_of_boundary(interior_edges_ + b);
  });
}

void Engine::flux_of_boundary(int boundary_edge) {
  const std::size_t e = at(boundary_edge);
  const std::size_t c = at(edges_.left[e]);
  const physics::Edge edge = {edges_.nx[e], edges_.ny[e], edges_.length[e]};
  const physics::EdgeSide side = physics::to_edge_frame(
      {cells_.h[c], cells_.qx[c], cells_.qy[c], cells_.zb[c], cells_.eta[c]}, edge, zero_depth_);
  physics::BoundaryFlux flux{};
  switch (edges_.kind[e]) {
    case BoundaryKind::wall:
      flux = physics::boundary_wall(side, zero_depth_);
      break;
    case BoundaryKind::transmissive:
      flux = physics::boundary_transmissive(side, zero_depth_);
      break;
    case BoundaryKind::discharge:
      flux = physics::boundary_discharge(side, edges_.imposed[e], 0.0, zero_depth_);
      break;
    case BoundaryKind::water_level:
      flux = physics::boundary_water_level(side, edges_.imposed[e], zero_depth_);
      break;
  }
  const physics::WaterSlot slot = physics::boundary_slot(edge, flux);
  mass_[e] = slot.h;
  momentum_x_[2 * e] = slot.qx;
  momentum_y_[2 * e] = slot.qy;
}

void Engine::add_rain(const StepTimes& times) {
  for (RainInput& term : rain_terms_) {
    const physics::RainAddition rain =
        physics::rain_addition(term.hyetogram, term.clock, times.t, times.t_start, times.t_end);
    rain_[at(term.cell)] = rain.depth;
    term.clock = rain.clock;
  }
}

void Engine::set_infiltration(const StepTimes& times) {
  for (const InfiltrationInput& term : infiltration_terms_) {
    const std::size_t c = at(term.cell);
    const physics::Infiltration soil =
        term.is_green_ampt
            ? physics::infiltration_green_ampt(term.green_ampt, cells_.h[c], cells_.infiltrated[c],
                                               demand_[c], times.dt)
            : physics::infiltration_horton(term.horton, cells_.h[c], cells_.infiltrated[c],
                                           demand_[c], times.dt);
    demand_[c] = soil.demand;
    cells_.infiltrated[c] = soil.infiltrated;
  }
}

double Engine::advance(const StepTimes& times) {
  add_rain(times);
  set_infiltration(times);
  const CellColumns cells = cell_columns();
  const EdgeColumns edges = edge_columns();
  const StepValues values = {times.dt, zero_depth_, dry_step_};
  team_.run([&](int member) {
    const Share share = share_of(member, team_.size(), static_cast<int>(cells_.h.size()));
    smallest_steps_[at(member)] =
        kernels_.advance(cells, edges, sources_, values, share.begin, share.end);
  });
  double step = physics::unbounded_step;
  for (const double s : smallest_steps_) step = physics::smaller(step, s);
  return physics::stable_step_domain(step, char_length_min_);
}

CellOutput Engine::cell(int object_cell) const {
  const std::size_t k = at(cell_number_[at(object_cell)]);
  return {cells_.h[k],     cells_.qx[k],    cells_.qy[k],    cells_.eta[k],
          cells_.max_h[k], cells_.max_u[k], cells_.max_v[k], cells_.infiltrated[k]};
}

}  // namespace engine
