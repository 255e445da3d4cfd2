#include "report/VolumeLedger.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

using cases::at;
using cases::Number;

double Books::error() const {
  CompensatedSum sum;
  sum.add(final);
  sum.add(-initial);
  for (const Passed& passed : boundaries) {
    sum.add(-passed.in.value());
    sum.add(passed.out.value());
  }
  sum.add(-rain);
  sum.add(infiltrated);
  sum.add(-created);
  return sum.value();
}

double Books::relative_error() const {
  double in = std::fabs(initial) + rain + created, out = std::fabs(final) + std::fabs(infiltrated);
  for (const Passed& passed : boundaries) {
    in += passed.in.value();
    out += passed.out.value();
  }
  const double turnover = std::max(in, out);
  return turnover == 0.0 ? 0.0 : error() / turnover;
}

VolumeLedger::VolumeLedger(const fields::Flow& flow, const cases::Case& contents)
    : flow_(flow), case_(contents), initial_(stored()) {
  find_boundaries();
  find_rain();
}

double VolumeLedger::volume_of(fields::Field field) const {
  std::vector<double> depths(at(case_.mesh.n_cells()));
  flow_.read(field, depths);
  CompensatedSum sum;
  for (Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
    sum.add(depths[at(cell)] * case_.mesh.geometry_of(cell).area);
  }
  return sum.value();
}

double VolumeLedger::unseen_volume(double fields::UnseenDepth::*depth) const {
  CompensatedSum sum;
  for (Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
    sum.add(flow_.unseen_depth(cell).*depth * case_.mesh.geometry_of(cell).area);
  }
  return sum.value();
}

VolumeLedger::Stored VolumeLedger::stored() const {
  using fields::Field;
  return {volume_of(Field::depth), volume_of(Field::infiltrated_depth),
          volume_of(Field::sediment_thickness)};
}

void VolumeLedger::find_boundaries() {
  constexpr int slots_that_count = 3;  // of a cell; the fluxes of its further edges have no effect
  const cases::Mesh& mesh = case_.mesh;
  std::vector<int> slots(at(mesh.n_cells()), 0);  // of the edges so far
  auto boundary = mesh.boundaries.begin();
  for (Number edge = 0; edge < mesh.n_edges() && boundary != mesh.boundaries.end(); ++edge) {
    const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
    if (boundary->edge == edge) {
      const bool counts = slots[at(left)] < slots_that_count;
      add_boundary(static_cast<int>(boundary - mesh.boundaries.begin()), counts);
      ++boundary;
    }
    ++slots[at(left)];
    if (right >= 0) ++slots[at(right)];
  }
}

void VolumeLedger::add_boundary(int number, bool counts) {
  const cases::BoundaryKind* const kind =
      cases::boundary_kind(case_.mesh.boundaries[at(number)].code);
  if (std::string_view(kind->books).empty()) return;
  const auto k = static_cast<std::size_t>(kind - cases::boundary_kinds.data());
  ++water_passed_[k].edges;
  ++sediment_passed_[k].edges;
  if (counts) boundaries_.push_back({number, k});
}

void VolumeLedger::find_rain() {
  std::map<int, std::size_t> known;
  for (std::size_t cell = 0; cell < case_.fields.rain.size(); ++cell) {
    const int number = case_.fields.rain[cell];
    if (number < 0) continue;
    const double area = case_.mesh.geometry_of(static_cast<Number>(cell)).area;
    const auto [entry, is_new] = known.try_emplace(number, rained_.size());
    if (!is_new) {
      rained_[entry->second].area += area;
      continue;
    }
    rained_.push_back({number, case_.rain[at(number)].intervals(),
                       physics::clock_before_rain(case_.t_start), area});
  }
}

void VolumeLedger::set_rain_clocks(const std::vector<physics::RainClock>& clocks) {
  for (RainedCells& cells : rained_) cells.clock = clocks[at(cells.number)];
}

void VolumeLedger::add_step(double t, double dt) {
  for (const OpenBoundary& boundary : boundaries_) {
    const fields::BoundaryInflow inflow = flow_.boundary_inflow(boundary.number);
    water_passed_[boundary.kind].add(inflow.water * dt);
    sediment_passed_[boundary.kind].add(inflow.bed * dt);
  }
  for (RainedCells& cells : rained_) {
    const physics::RainAddition rain =
        physics::rain_addition(cells.hyetogram, cells.clock, t, case_.t_start, case_.t_end);
    cells.clock = rain.clock;
    rain_.add(rain.depth * cells.area);
  }
}

Books VolumeLedger::water() const {
  const Stored now = stored();
  // No rule of the models sets a depth, so none creates water.
  return {.initial = initial_.water,
          .final = now.water,
          .boundaries = water_passed_,
          .rain = rain_.value(),
          .infiltrated = now.soil - initial_.soil + unseen_volume(&fields::UnseenDepth::recovered)};
}

Books VolumeLedger::sediment() const {
  return {.initial = initial_.sediment,
          .final = volume_of(fields::Field::sediment_thickness),
          .boundaries = sediment_passed_,
          .created = unseen_volume(&fields::UnseenDepth::lifted)};
}
