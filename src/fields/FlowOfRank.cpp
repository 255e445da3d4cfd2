#include "fields/FlowOfRank.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "ranks/values.hpp"

namespace fields {

using cases::at;
using cases::Number;
using Outcome = RankStart::Outcome;

namespace {

/// What a column has a value for.
enum class Over { cells, boundaries };

/// Calls visit(column, what it is over) for the columns of a state, and of notes.
template <class Visit>
void for_each_column_of(const engine::State&, const Visit& visit) {
  for (const auto column : engine::columns_of_flow) visit(column, Over::cells);
  visit(&engine::State::imposed_rain, Over::cells);
  visit(&engine::State::imposed_on_boundaries, Over::boundaries);
}
template <class Visit>
void for_each_column_of(const engine::SavedNotes&, const Visit& visit) {
  using Notes = engine::SavedNotes;
  for (const auto column : {&Notes::recovered, &Notes::lifted, &Notes::taken_discharge}) {
    visit(column, Over::cells);
  }
}

/// What a state or notes hold besides columns, which every rank knows.
void take_the_rest(engine::State& to, const engine::State& from) {
  to.rain_clocks = from.rain_clocks;
  to.has_told_not_hyperbolic = from.has_told_not_hyperbolic;
}
void take_the_rest(engine::SavedNotes& to, const engine::SavedNotes& from) {
  to.of_last_step = from.of_last_step;
}

void place(const std::vector<double>& part, const std::vector<Number>& numbers,
           std::span<double> all) {
  for (std::size_t k = 0; k < part.size(); ++k) all[at(numbers[k])] = part[k];
}

std::vector<double> entries_of(const std::vector<double>& column,
                               const std::vector<Number>& numbers) {
  std::vector<double> entries;
  if (column.empty()) return entries;
  entries.reserve(numbers.size());
  for (const Number number : numbers) entries.push_back(column[at(number)]);
  return entries;
}

}  // namespace

FlowOfRank::FlowOfRank(const cases::Case& contents, const RanksPlan& plan, ranks::Group& group)
    : group_(group) {
  if (is_first()) {
    cells_ = plan.cells;
    owners_ = ranks::owners_of(cells_);
    list_boundaries(contents.mesh);
  }
  ranks::Share share = take_share(contents);
  part_ = std::move(share.part);
  list_own_boundaries();
  exchange_ = group.exchange(std::move(share.halos));
  start_ = start_engine(plan);
  agree_on_start();
}

ranks::Share FlowOfRank::take_share(const cases::Case& contents) {
  if (!is_first()) return ranks::receive_value<ranks::Share>(group_, 0);
  cases::PartCutter cutter(contents);
  const auto share_of = [&](int rank) {
    return ranks::share_of(cutter, cells_[at(rank)], owners_, cases::rings_of(contents.scheme));
  };
  for (int rank = 1; rank < group_.size(); ++rank) {
    ranks::send_value(group_, share_of(rank), rank);
  }
  return share_of(0);
}

RankStart FlowOfRank::start_engine(const RanksPlan& plan) {
  try {
    constexpr int cells_per_patch_that_suit = 0;
    engine_ = std::make_unique<engine::Engine>(part_, *exchange_, plan.threads,
                                               cells_per_patch_that_suit, plan.processor);
    fields_ = std::make_unique<TableFields>(part_.contents, *engine_);
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

void FlowOfRank::list_own_boundaries() {
  const cases::Mesh& mesh = part_.contents.mesh;
  for (std::size_t b = 0; b < mesh.boundaries.size(); ++b) {
    if (mesh.left[at(mesh.boundaries[b].edge)] < part_.owned) {
      own_boundaries_.push_back(static_cast<Number>(b));
    }
  }
}

void FlowOfRank::list_boundaries(const cases::Mesh& mesh) {
  boundaries_.resize(at(group_.size()));
  for (std::size_t b = 0; b < mesh.boundaries.size(); ++b) {
    const int owner = owners_[at(mesh.left[at(mesh.boundaries[b].edge)])];
    boundaries_[at(owner)].push_back(static_cast<Number>(b));
  }
}

std::size_t FlowOfRank::number_of_boundaries() const {
  std::size_t count = 0;
  for (const std::vector<Number>& of_rank : boundaries_) count += of_rank.size();
  return count;
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
  std::vector<Number> own;
  for (const Number cell : cells) {
    if (owns(cell)) own.push_back(part_.own_cell(cell));
  }
  own_values_.resize(own.size());
  fields_->read(field, own, own_values_);
  if (!is_first()) {
    if (!own_values_.empty()) group_.send(std::as_bytes(std::span(own_values_)), 0);
    return;
  }
  for (int rank = 0; rank < group_.size(); ++rank) {
    std::vector<std::size_t> of_rank;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (owners_[at(cells[i])] == rank) of_rank.push_back(i);
    }
    if (of_rank.empty()) continue;
    received_.resize(of_rank.size());
    if (rank > 0) group_.receive(std::as_writable_bytes(std::span(received_)), rank);
    const std::vector<double>& found = rank > 0 ? received_ : own_values_;
    for (std::size_t k = 0; k < of_rank.size(); ++k) values[of_rank[k]] = found[k];
  }
}

CellState FlowOfRank::state(Number cell) {
  CellState state;
  if (owns(cell)) state = fields_->state(part_.own_cell(cell));
  const auto bytes = std::as_writable_bytes(std::span(&state, 1));
  if (is_first() && !owns(cell)) group_.receive(bytes, owners_[at(cell)]);
  if (!is_first() && owns(cell)) group_.send(bytes, 0);
  return state;
}

void FlowOfRank::read_inflows(std::vector<BoundaryInflow>& inflows) {
  std::vector<BoundaryInflow> of_rank;
  for (const int b : own_boundaries_) of_rank.push_back(engine_->boundary_inflow(b));
  if (!is_first()) return group_.send(std::as_bytes(std::span(of_rank)), 0);
  inflows.resize(number_of_boundaries());
  for (int rank = 0; rank < group_.size(); ++rank) {
    const std::vector<Number>& numbers = boundaries_[at(rank)];
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
    for_each_column_of(part, [&](auto column, Over over) {
      const std::vector<Number>& numbers = (over == Over::cells ? cells_ : boundaries_)[at(rank)];
      if (numbers.empty()) return;
      const std::size_t count = over == Over::cells ? owners_.size() : number_of_boundaries();
      (all.*column).resize((part.*column).empty() ? 0 : count);
      place(part.*column, numbers, all.*column);
    });
  }
}

template <class Value>
Value FlowOfRank::own_part_of(const Value& all) {
  if (!is_first()) return ranks::receive_value<Value>(group_, 0);
  const auto part_of = [&](int rank) {
    Value part;
    take_the_rest(part, all);
    for_each_column_of(all, [&](auto column, Over over) {
      part.*column =
          entries_of(all.*column, (over == Over::cells ? cells_ : boundaries_)[at(rank)]);
    });
    return part;
  };
  for (int rank = 1; rank < group_.size(); ++rank) ranks::send_value(group_, part_of(rank), rank);
  return part_of(0);
}

void FlowOfRank::save(engine::State& state) {
  engine_->save(own_state_);
  std::vector<double>& imposed = own_state_.imposed_on_boundaries;
  imposed = entries_of(imposed, own_boundaries_);
  gather_parts(own_state_, state);
}

void FlowOfRank::save_notes(engine::SavedNotes& notes) {
  engine::SavedNotes own;
  engine_->save_notes(own);
  gather_parts(own, notes);
}

void FlowOfRank::load(const engine::State& state) {
  engine::State own = own_part_of(state);
  std::vector<double> imposed(own.imposed_on_boundaries.empty() ? 0 : part_.boundary_number.size(),
                              NAN);
  place(own.imposed_on_boundaries, own_boundaries_, imposed);
  own.imposed_on_boundaries = std::move(imposed);
  engine_->set_state(own);
}

void FlowOfRank::load_notes(const engine::SavedNotes& notes) {
  engine_->load_notes(own_part_of(notes));
}

}  // namespace fields
