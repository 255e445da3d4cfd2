// States and notes of some of the cells that others hold.
#pragma once

#include <vector>

#include "case/entries_of.hpp"
#include "engine/State.hpp"

namespace fields {

/// Calls visit(column) for the columns of a state in which nothing is imposed, and of notes.
template <class Visit>
void for_each_column_of(const engine::State&, const Visit& visit) {
  for (const auto column : engine::columns_of_flow) visit(column);
}
template <class Visit>
void for_each_column_of(const engine::SavedNotes&, const Visit& visit) {
  using Notes = engine::SavedNotes;
  for (const auto column : {&Notes::recovered, &Notes::lifted, &Notes::taken_discharge}) {
    visit(column);
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

/// The entries of a state or of notes.
template <class Value>
Value part_of(const Value& all, const std::vector<cases::Number>& entries) {
  Value part;
  take_the_rest(part, all);
  for_each_column_of(all,
                     [&](auto column) { part.*column = cases::entries_of(all.*column, entries); });
  return part;
}

/// Puts a part where its entries stand in all of so many cells.
template <class Value>
void put_part(const Value& part, const std::vector<cases::Number>& entries, std::size_t cells,
              Value& all) {
  if (entries.empty()) return;
  for_each_column_of(part, [&](auto column) {
    (all.*column).resize((part.*column).empty() ? 0 : cells);
    place(part.*column, entries, all.*column);
  });
}

}  // namespace fields
