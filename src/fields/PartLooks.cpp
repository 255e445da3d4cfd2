#include "fields/PartLooks.hpp"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "physics/flow_extremes.hpp"
#include "physics/stable_step.hpp"

namespace fields {

using cases::at;
using cases::Number;

PartLooks::PartLooks(const FlowPart& part) : part_(part), case_(part.contents()) {
  find_boundaries();
  if (case_.fields.soil.empty()) return;
  read(Field::infiltrated_depth, infiltrated_before_);
  for (const cases::Soil& soil : case_.soils) {
    recovers_.push_back(std::visit([](const auto& of) { return of.kr > 0.0; }, soil.parameters));
  }
}

Seen PartLooks::see(const Look& look) {
  switch (look.kind) {
    case Look::Kind::water:
      return see_water();
    case Look::Kind::most_rapid:
      return see_most_rapid();
    case Look::Kind::column:
      return see_column(look.field, look.components);
    case Look::Kind::states:
      return see_states();
    case Look::Kind::nearest_lost:
      return see_nearest_lost(look.point);
    case Look::Kind::bounds:
      return see_bounds();
    case Look::Kind::volumes:
      return see_volumes();
  }
  return {};
}

const std::vector<double>& PartLooks::read(Field field, std::vector<double>& values) const {
  values.resize(at(part_.count()));
  part_.read(field, values);
  return values;
}

void PartLooks::read_states() {
  read(Field::depth, h_);
  read(Field::discharge_x, qx_);
  read(Field::discharge_y, qy_);
}

double PartLooks::area(Number k) {
  if (areas_.empty()) {
    for (Number i = 0; i < part_.count(); ++i) {
      areas_.push_back(case_.mesh.geometry_of(part_.in_case(i)).area);
    }
  }
  return areas_[at(k)];
}

WaterSeen PartLooks::see_water() {
  read_states();
  WaterSeen seen;
  seen.lowest_depth = std::accumulate(h_.begin(), h_.end(), 0.0, [](double a, double b) {
    return b < a ? b : a;  // a branch-free minimum that passes over what is no number
  });
  for (std::size_t i = 0; i < h_.size(); ++i) {
    seen.films += physics::is_film(h_[i], qx_[i], qy_[i], case_.zero_depth) ? 1 : 0;
  }
  if (!infiltrated_before_.empty()) see_soils(seen);
  return seen;
}

void PartLooks::see_soils(WaterSeen& seen) {
  read(Field::infiltrated_depth, values_);
  for (Number k = 0; k < part_.count(); ++k) {
    const int soil = case_.fields.soil[at(part_.in_case(k))];
    if (soil < 0) continue;
    const double before = infiltrated_before_[at(k)];
    // Recovery makes the depth of a soil fall too, but not below zero.
    const double fallen = (recovers_[at(soil)] ? std::min(before, 0.0) : before) - values_[at(k)];
    if (!(fallen > ColumnSurvey::rounding)) continue;
    seen.given_out.add(fallen * area(k));
    seen.note_given_out(fallen, part_.number(k));
  }
  infiltrated_before_.swap(values_);
}

RapidSeen PartLooks::see_most_rapid() {
  read_states();
  RapidSeen seen;
  for (Number k = 0; k < part_.count(); ++k) {
    const std::size_t i = at(k);
    const auto extremes = physics::extremes_of_state(h_[i], qx_[i], qy_[i],
                                                     physics::depth_terms(h_[i], case_.zero_depth));
    physics::note(seen.speed_squared_per_depth, extremes.speed_squared_per_depth, part_.number(k));
  }
  return seen;
}

ColumnSurvey PartLooks::see_column(Field field, int components) {
  read(field, values_);
  for (int k = 1; k < components; ++k) {
    const auto next = static_cast<Field>(static_cast<int>(field) + k);
    read(next, h_);
    for (std::size_t i = 0; i < values_.size(); ++i) values_[i] += h_[i];
  }
  ColumnSurvey survey;
  for (Number k = 0; k < part_.count(); ++k) survey.add(part_.number(k), values_[at(k)], area(k));
  return survey;
}

StatesSeen PartLooks::see_states() {
  read_states();
  StatesSeen seen;
  for (Number k = 0; k < part_.count(); ++k) {
    const std::size_t i = at(k);
    const auto extremes = physics::extremes_of_state(h_[i], qx_[i], qy_[i],
                                                     physics::depth_terms(h_[i], case_.zero_depth));
    seen.speed_squared = std::max(seen.speed_squared, extremes.speed_squared);
    if (extremes.not_finite == 0) {
      seen.wet += physics::is_wet(h_[i], case_.zero_depth) ? 1 : 0;
      continue;
    }
    ++seen.not_finite;
    const physics::SpacePoint center = case_.mesh.center_of(part_.in_case(k));
    seen.lost_x.add(center.x);
    seen.lost_y.add(center.y);
  }
  return seen;
}

NearestSeen PartLooks::see_nearest_lost(physics::PlanPoint point) {
  read_states();
  NearestSeen seen;
  for (Number k = 0; k < part_.count(); ++k) {
    const std::size_t i = at(k);
    if (physics::is_finite_state(h_[i], qx_[i], qy_[i])) continue;
    const physics::SpacePoint center = case_.mesh.center_of(part_.in_case(k));
    seen.note(std::hypot(center.x - point.x, center.y - point.y), part_.number(k));
  }
  return seen;
}

BoundsSeen PartLooks::see_bounds() {
  read_states();
  BoundsSeen seen;
  for (Number k = 0; k < part_.count(); ++k) {
    const std::size_t i = at(k);
    const Number cell = part_.number(k);
    const double length = case_.mesh.geometry_of(part_.in_case(k)).char_length();
    seen.note_length(length, cell);
    if (!physics::is_finite_state(h_[i], qx_[i], qy_[i])) {
      seen.not_finite = first_cell(seen.not_finite, cell);
      continue;
    }
    seen.note_step(physics::stable_step(h_[i], qx_[i], qy_[i], length, case_.zero_depth), cell);
    if (h_[i] <= case_.zero_depth) seen.has_dry_cell = true;
  }
  return seen;
}

VolumesSeen PartLooks::see_volumes() {
  VolumesSeen seen;
  const auto add = [&](utils::ExactSum& sum, Field field) {
    read(field, values_);
    for (Number k = 0; k < part_.count(); ++k) sum.add(values_[at(k)] * area(k));
  };
  add(seen.water, Field::depth);
  add(seen.soil, Field::infiltrated_depth);
  add(seen.sediment, Field::sediment_thickness);
  seen.rained_area.resize(case_.rain.size());
  for (Number k = 0; k < part_.count(); ++k) {
    const UnseenDepth unseen = part_.unseen_depth(k);
    seen.recovered.add(unseen.recovered * area(k));
    seen.lifted.add(unseen.lifted * area(k));
    seen.taken_discharge.add(unseen.taken_discharge * area(k));
    if (case_.fields.rain.empty()) continue;
    const int hyetogram = case_.fields.rain[at(part_.in_case(k))];
    if (hyetogram >= 0) seen.rained_area[at(hyetogram)].add(area(k));
  }
  seen.water_passed = water_passed_;
  seen.sediment_passed = sediment_passed_;
  return seen;
}

void PartLooks::find_boundaries() {
  constexpr int slots_that_count = 3;  // of a cell; the fluxes of its further edges have no effect
  const cases::Mesh& mesh = case_.mesh;
  std::vector<int> slots(at(mesh.n_cells()), 0);  // of the edges so far
  auto boundary = mesh.boundaries.begin();
  for (Number edge = 0; edge < mesh.n_edges() && boundary != mesh.boundaries.end(); ++edge) {
    const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
    if (boundary->edge == edge) {
      const bool counts = slots[at(left)] < slots_that_count;
      if (part_.has(left)) {
        add_boundary(static_cast<int>(boundary - mesh.boundaries.begin()), counts);
      }
      ++boundary;
    }
    ++slots[at(left)];
    if (right >= 0) ++slots[at(right)];
  }
}

void PartLooks::add_boundary(int number, bool counts) {
  const cases::BoundaryKind* const kind =
      cases::boundary_kind(case_.mesh.boundaries[at(number)].code);
  if (std::string_view(kind->books).empty()) return;
  const auto k = static_cast<std::size_t>(kind - cases::boundary_kinds.data());
  ++water_passed_[k].edges;
  ++sediment_passed_[k].edges;
  if (counts) boundaries_.push_back({number, k});
}

void PartLooks::go_on_from(const PartLooks& before, std::vector<double> infiltrated) {
  for (std::size_t kind = 0; kind < water_passed_.size(); ++kind) {
    for (const auto sum : {&Passed::in, &Passed::out}) {
      (water_passed_[kind].*sum).add(before.water_passed_[kind].*sum);
      (sediment_passed_[kind].*sum).add(before.sediment_passed_[kind].*sum);
    }
  }
  set_infiltrated(std::move(infiltrated));
}

void PartLooks::add_step(double dt) {
  for (const OpenBoundary& boundary : boundaries_) {
    const BoundaryInflow inflow = part_.boundary_inflow(boundary.number);
    water_passed_[boundary.kind].add(inflow.water * dt);
    sediment_passed_[boundary.kind].add(inflow.bed * dt);
  }
}

}  // namespace fields
