// States and notes of some of the cells and boundaries that others hold.
#pragma once

#include <span>
#include <vector>

#include "case/entries_of.hpp"
#include "engine/State.hpp"

namespace fields {

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
inline void take_the_rest(engine::State& to, const engine::State& from) {
  to.rain_clocks = from.rain_clocks;
  to.has_told_not_hyperbolic = from.has_told_not_hyperbolic;
}
inline void take_the_rest(engine::SavedNotes& to, const engine::SavedNotes& from) {
  to.of_last_step = from.of_last_step;
}

template <class Value, class Values>
void place(const std::vector<Value>& part, const std::vector<cases::Number>& numbers,
           Values&& all) {
  for (std::size_t k = 0; k < part.size(); ++k) all[cases::at(numbers[k])] = part[k];
}

/// Numbers of cells and of boundaries.
struct Entries {
  std::vector<cases::Number> cells, boundaries;

  const std::vector<cases::Number>& operator[](Over over) const {
    return over == Over::cells ? cells : boundaries;
  }
  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.cells, self.boundaries);
  }
};

/// The entries of a state or of notes.
template <class Value>
Value part_of(const Value& all, const Entries& entries) {
  Value part;
  take_the_rest(part, all);
  for_each_column_of(all, [&](auto column, Over over) {
    part.*column = cases::entries_of(all.*column, entries[over]);
  });
  return part;
}

/// Puts a part where its entries stand in all of so many cells and boundaries.
template <class Value>
void put_part(const Value& part, const Entries& entries, std::size_t cells, std::size_t boundaries,
              Value& all) {
  for_each_column_of(part, [&](auto column, Over over) {
    if (entries[over].empty()) return;
    const std::size_t count = over == Over::cells ? cells : boundaries;
    (all.*column).resize((part.*column).empty() ? 0 : count);
    place(part.*column, entries[over], all.*column);
  });
}

}  // namespace fields
