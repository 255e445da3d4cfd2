#include "fields/looks.hpp"

#include <algorithm>

namespace fields {

using cases::Number;

void WaterSeen::note_given_out(double depth, Number cell) {
  if (depth > most_given_out) {
    most_given_out = depth;
    cell_of_most = cell;
  } else if (depth == most_given_out && depth > 0.0) {
    cell_of_most = first_cell(cell_of_most, cell);
  }
}

void WaterSeen::add(const WaterSeen& other) {
  lowest_depth = std::min(lowest_depth, other.lowest_depth);
  films += other.films;
  given_out.add(other.given_out);
  note_given_out(other.most_given_out, other.cell_of_most);
}

void RapidSeen::add(const RapidSeen& other) {
  physics::FlowRecord& own = speed_squared_per_depth;
  const physics::FlowRecord& from = other.speed_squared_per_depth;
  if (from.value > own.value) {
    own = from;
  } else if (from.value == own.value) {
    own.cell = first_cell(own.cell, from.cell);
  }
}

void StatesSeen::add(const StatesSeen& other) {
  wet += other.wet;
  speed_squared = std::max(speed_squared, other.speed_squared);
  not_finite += other.not_finite;
  lost_x.add(other.lost_x);
  lost_y.add(other.lost_y);
}

void NearestSeen::note(double distance_of_cell, Number number) {
  first = first_cell(first, number);
  if (distance_of_cell < distance) {
    distance = distance_of_cell;
    cell = number;
  } else if (distance_of_cell == distance && cell >= 0) {
    cell = first_cell(cell, number);
  }
}

void NearestSeen::add(const NearestSeen& other) {
  if (other.cell >= 0) note(other.distance, other.cell);
  first = first_cell(first, other.first);
}

void BoundsSeen::note_step(double step_of_cell, Number cell) {
  if (step_of_cell < step) {
    step = step_of_cell;
    slowest = cell;
  } else if (step_of_cell == step && slowest >= 0) {
    slowest = first_cell(slowest, cell);
  }
}

void BoundsSeen::note_length(double length_of_cell, Number cell) {
  if (smallest < 0 || length_of_cell < length) {
    length = length_of_cell;
    smallest = cell;
  } else if (length_of_cell == length) {
    smallest = first_cell(smallest, cell);
  }
}

void BoundsSeen::add(const BoundsSeen& other) {
  not_finite = first_cell(not_finite, other.not_finite);
  if (other.slowest >= 0) note_step(other.step, other.slowest);
  if (other.smallest >= 0) note_length(other.length, other.smallest);
  has_dry_cell = has_dry_cell || other.has_dry_cell;
}

void Passed::add(const Passed& other) {
  edges += other.edges;
  in.add(other.in);
  out.add(other.out);
}

void add(PassedByKind& to, const PassedByKind& from) {
  for (std::size_t kind = 0; kind < to.size(); ++kind) to[kind].add(from[kind]);
}

void VolumesSeen::add(const VolumesSeen& other) {
  for (const auto sum :
       {&VolumesSeen::water, &VolumesSeen::soil, &VolumesSeen::sediment, &VolumesSeen::recovered,
        &VolumesSeen::lifted, &VolumesSeen::taken_discharge}) {
    (this->*sum).add(other.*sum);
  }
  fields::add(water_passed, other.water_passed);
  fields::add(sediment_passed, other.sediment_passed);
  rained_area.resize(std::max(rained_area.size(), other.rained_area.size()));
  for (std::size_t i = 0; i < other.rained_area.size(); ++i) {
    rained_area[i].add(other.rained_area[i]);
  }
}

void add(Seen& to, const Seen& other) {
  std::visit(
      [&](auto& seen) { seen.add(std::get<std::remove_reference_t<decltype(seen)>>(other)); }, to);
}

FlowSurvey Looks::survey() {
  const auto seen = std::get<StatesSeen>(see({Look::Kind::states}));
  FlowSurvey survey = {seen.wet, std::sqrt(seen.speed_squared), seen.not_finite};
  if (seen.not_finite == 0) return survey;
  // What is not a number spreads from cell to cell: the middle is where it began, more or less.
  const auto count = static_cast<double>(seen.not_finite);
  const physics::PlanPoint middle = {seen.lost_x.value() / count, seen.lost_y.value() / count};
  const Seen nearest = see({.kind = Look::Kind::nearest_lost, .point = middle});
  survey.a_cell_not_finite = std::get<NearestSeen>(nearest).nearest();
  return survey;
}

}  // namespace fields
