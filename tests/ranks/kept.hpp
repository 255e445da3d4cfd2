// What is kept of a flow, whoever computes it: as rows of numbers, and as the states of all cells.
#pragma once

#include <vector>

#include "fields/Flow.hpp"
#include "fields/SavedFlow.hpp"
#include "utils/bytes.hpp"

namespace test_ranks {

struct Kept {
  fields::SavedFlow flow;
  utils::Bytes rows;

  friend bool operator==(const Kept& a, const Kept& b) {
    utils::Bytes of_a, of_b;
    utils::put_into(of_a, a.flow);
    utils::put_into(of_b, b.flow);
    return of_a == of_b && a.rows == b.rows;
  }
};

inline Kept kept_of(fields::SavedRows& rows, const fields::Books& books) {
  rows.gather(books);
  Kept kept{rows.flow(), {}};
  utils::MemorySink sink(kept.rows);
  rows.put_own_to(sink);
  for (bool has_more = rows.has_others(); has_more;) {
    const auto piece = rows.next();
    if (!piece) continue;
    sink.put(piece->text.data(), piece->text.size());
    has_more = !piece->is_last;
  }
  return kept;
}

inline fields::SavedCells cells_of(const Kept& kept) {
  using fields::SavedPart;
  fields::SavedCells cells;
  std::vector<double*> columns;
  for (std::vector<double>* const column : fields::columns_in_rows(
           kept.flow, {SavedPart::state, SavedPart::notes, SavedPart::infiltrated}, cells)) {
    column->resize(kept.flow.cells);
    columns.push_back(column->data());
  }
  utils::MemorySource source(kept.rows);
  fields::take_rows(columns, kept.flow.cells, source);
  fields::take_the_rest(kept.flow, cells);
  return cells;
}

inline Kept kept_of(const fields::SavedCells& cells) {
  Kept kept;
  kept.flow.describe(cells, cells.state.h.size());
  std::vector<const double*> columns;
  fields::for_each_saved_column(cells, [&](const std::vector<double>& column) {
    if (!column.empty()) columns.push_back(column.data());
  });
  utils::MemorySink sink(kept.rows);
  fields::put_rows(columns, kept.flow.cells, sink);
  return kept;
}

inline fields::SavedCells cells_of(const fields::Flow& flow, const fields::Books& books = {}) {
  return cells_of(kept_of(*flow.saved_rows(), books));
}
inline engine::State state_of(const fields::Flow& flow) { return cells_of(flow).state; }

/// Puts a state in force.
inline void load(fields::Flow& flow, const engine::State& state) {
  const Kept kept = kept_of({.state = state, .notes = {}, .infiltrated = {}});
  utils::MemorySource source(kept.rows);
  flow.load(kept.flow, source);
}

}  // namespace test_ranks
