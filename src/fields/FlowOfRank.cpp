#include "fields/FlowOfRank.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "ranks/values.hpp"

namespace fields {

using cases::at;
using cases::Number;
using Outcome = RankStart::Outcome;

namespace {

constexpr auto columns_of(const engine::State*) { return engine::columns_of_flow; }
constexpr auto columns_of(const engine::SavedNotes*) {
  using Notes = engine::SavedNotes;
  return std::to_array<std::vector<double> Notes::*>(
      {&Notes::recovered, &Notes::lifted, &Notes::taken_discharge});
}

/// What a state or notes hold besides their columns, which every rank knows.
void take_the_rest(engine::State& to, const engine::State& from) {
  to.rain_clocks = from.rain_clocks;
  to.imposed_on_boundaries = from.imposed_on_boundaries;
  to.imposed_rain = from.imposed_rain;
  to.has_told_not_hyperbolic = from.has_told_not_hyperbolic;
}
void take_the_rest(engine::SavedNotes& to, const engine::SavedNotes& from) {
  to.of_last_step = from.of_last_step;
}

void place(const std::vector<double>& part, const ranks::Cells& cells, std::span<double> all) {
  for (std::size_t k = 0; k < part.size(); ++k) all[at(cells[k])] = part[k];
}

template <class Value>
Value part_of(const Value& all, const ranks::Cells& cells) {
  Value part;
  take_the_rest(part, all);
  for (const auto column : columns_of(&all)) {
    if ((all.*column).empty()) continue;
    (part.*column).reserve(cells.size());
    for (const Number cell : cells) (part.*column).push_back((all.*column)[at(cell)]);
  }
  return part;
}

}  // namespace

FlowOfRank::FlowOfRank(const cases::Case& contents, const RanksPlan& plan, ranks::Group& group)
    : case_(contents), group_(group) {
  ranks::Share share =
      ranks::share_of(contents.mesh, plan.cells, group.rank(), cases::rings_of(contents.scheme));
  exchange_ = group.exchange(std::move(share.halos));
  std::vector<int> owners = ranks::owners_of(plan.cells);
  list_boundaries(owners);
  start_ = start_engine(plan, std::move(share.subset));
  agree_on_start();
  if (!is_first()) return;
  cells_ = plan.cells;
  owners_ = std::move(owners);
}

RankStart FlowOfRank::start_engine(const RanksPlan& plan, engine::Subset subset) {
  try {
    engine_ = std::make_unique<engine::Engine>(case_, std::move(subset), *exchange_, plan.threads,
                                               0, plan.processor);
    fields_ = std::make_unique<TableFields>(case_, *engine_);
    return {.threads = engine_->threads()};
  } catch (const std::length_error& error) {
    return {Outcome::no_room_in_tables, error.what()};
  } catch (const std::exception& error) {
    return {Outcome::failed, error.what()};
  }
}

void FlowOfRank::agree_on_start() {
  if (is_first()) {
    for (int rank = 1; rank < group_.size(); ++rank) {
      auto other = ranks::receive_value<RankStart>(group_, rank);
      const int threads = std::min(start_.threads, other.threads);
      if (start_.outcome == Outcome::good) start_ = std::move(other);
      start_.threads = threads;
    }
  } else {
    ranks::send_value(group_, start_, 0);
  }
  ranks::broadcast_plain(group_, start_.outcome);
}

void FlowOfRank::list_boundaries(const std::vector<int>& owners) {
  boundaries_.resize(at(group_.size()));
  const cases::Mesh& mesh = case_.mesh;
  for (std::size_t b = 0; b < mesh.boundaries.size(); ++b) {
    const int owner = owners[at(mesh.left[at(mesh.boundaries[b].edge)])];
    boundaries_[at(owner)].push_back(static_cast<int>(b));
  }
}

bool FlowOfRank::owns(Number cell) const {
  return engine_->tables().is_owned(engine_->tables().place[at(cell)]);
}

double FlowOfRank::advance(const StepTimes& times, bool wishes_stop) {
  const double step = engine_->advance(times, {.stop = wishes_stop});
  not_hyperbolic_.reset();
  if (engine_->any_rank_was_not_hyperbolic()) gather_not_hyperbolic();
  return step;
}

/// The rank of the cell tells rank 0.
void FlowOfRank::gather_not_hyperbolic() {
  not_hyperbolic_ = engine_->not_hyperbolic();
  engine::NotHyperbolic found = not_hyperbolic_.value_or(engine::NotHyperbolic{-1, -1, 0, 0, 0});
  const auto bytes = std::as_writable_bytes(std::span(&found, 1));
  if (!is_first()) return group_.send(bytes, 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    group_.receive(bytes, rank);
    if (found.edge >= 0) not_hyperbolic_ = found;
  }
}

void FlowOfRank::gather(std::span<const double> own, std::span<double> all) {
  if (!is_first()) return group_.send(std::as_bytes(own), 0);
  for (std::size_t k = 0; k < own.size(); ++k) all[at(cells_.front()[k])] = own[k];
  for (int rank = 1; rank < group_.size(); ++rank) {
    const ranks::Cells& cells = cells_[at(rank)];
    received_.resize(cells.size());
    group_.receive(std::as_writable_bytes(std::span(received_)), rank);
    place(received_, cells, all);
  }
}

void FlowOfRank::read(Field field, std::span<double> values) {
  own_values_.resize(at(engine_->tables().owned));
  fields_->read(field, own_values_);
  gather(own_values_, values);
}

void FlowOfRank::read(Field field, std::span<const Number> cells, std::span<double> values) {
  const auto cells_and_places_of = [&](const auto& is_meant) {
    std::pair<std::vector<Number>, std::vector<std::size_t>> meant;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (!is_meant(cells[i])) continue;
      meant.first.push_back(cells[i]);
      meant.second.push_back(i);
    }
    return meant;
  };
  const auto own = cells_and_places_of([this](Number cell) { return owns(cell); });
  own_values_.resize(own.first.size());
  fields_->read(field, own.first, own_values_);
  if (!is_first()) {
    if (!own_values_.empty()) group_.send(std::as_bytes(std::span(own_values_)), 0);
    return;
  }
  for (std::size_t k = 0; k < own_values_.size(); ++k) values[own.second[k]] = own_values_[k];
  for (int rank = 1; rank < group_.size(); ++rank) {
    const auto of_rank =
        cells_and_places_of([&](Number cell) { return owners_[at(cell)] == rank; });
    received_.resize(of_rank.second.size());
    if (received_.empty()) continue;
    group_.receive(std::as_writable_bytes(std::span(received_)), rank);
    for (std::size_t k = 0; k < received_.size(); ++k) values[of_rank.second[k]] = received_[k];
  }
}

CellState FlowOfRank::state(Number cell) {
  CellState state;
  if (owns(cell)) state = fields_->state(cell);
  const auto bytes = std::as_writable_bytes(std::span(&state, 1));
  if (is_first() && !owns(cell)) group_.receive(bytes, owners_[at(cell)]);
  if (!is_first() && owns(cell)) group_.send(bytes, 0);
  return state;
}

void FlowOfRank::read_inflows(std::vector<BoundaryInflow>& inflows) {
  std::vector<BoundaryInflow> of_rank;
  for (const int b : boundaries_[at(group_.rank())]) {
    of_rank.push_back(engine_->boundary_inflow(b));
  }
  if (!is_first()) return group_.send(std::as_bytes(std::span(of_rank)), 0);
  inflows.resize(case_.mesh.boundaries.size());
  for (int rank = 0; rank < group_.size(); ++rank) {
    const std::vector<int>& numbers = boundaries_[at(rank)];
    of_rank.resize(numbers.size());
    if (rank > 0) group_.receive(std::as_writable_bytes(std::span(of_rank)), rank);
    for (std::size_t k = 0; k < numbers.size(); ++k) inflows[at(numbers[k])] = of_rank[k];
  }
}

template <class Value>
void FlowOfRank::gather_parts(const Value& own, Value& all) {
  if (!is_first()) return ranks::send_value(group_, own, 0);
  take_the_rest(all, own);
  for (int rank = 0; rank < group_.size(); ++rank) {
    const Value part = rank == 0 ? own : ranks::receive_value<Value>(group_, rank);
    for (const auto column : columns_of(&part)) {
      (all.*column).resize((part.*column).empty() ? 0 : owners_.size());
      place(part.*column, cells_[at(rank)], all.*column);
    }
  }
}

template <class Value>
Value FlowOfRank::own_part_of(const Value& all) {
  if (!is_first()) return ranks::receive_value<Value>(group_, 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    ranks::send_value(group_, part_of(all, cells_[at(rank)]), rank);
  }
  return part_of(all, cells_.front());
}

void FlowOfRank::save(engine::State& state) {
  engine_->save(own_state_);
  gather_parts(own_state_, state);
}

void FlowOfRank::save_notes(engine::SavedNotes& notes) {
  engine::SavedNotes own;
  engine_->save_notes(own);
  gather_parts(own, notes);
}

void FlowOfRank::load(const engine::State& state) { engine_->set_state(own_part_of(state)); }

void FlowOfRank::load_notes(const engine::SavedNotes& notes) {
  engine_->load_notes(own_part_of(notes));
}

}  // namespace fields
