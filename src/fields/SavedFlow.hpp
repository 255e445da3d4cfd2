// A flow between two steps as it is kept, so that another run goes on from it: what is known
// everywhere, and a row of numbers for every cell, in the order of the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "case/Case.hpp"
#include "engine/State.hpp"
#include "physics/flow_extremes.hpp"
#include "utils/bytes.hpp"

namespace fields {

/// What is kept of cells. Columns of what there is not are empty.
struct SavedCells {
  engine::State state;
  engine::SavedNotes notes;         ///< of steps that are watched
  std::vector<double> infiltrated;  ///< at the last look, see PartLooks, m
};

/// Calls visit(column) for all columns, in the order in which they stand in a row: those of the
/// state, then those of books.
template <class Cells, class Visit>
void for_each_saved_column(Cells& cells, const Visit& visit) {
  for (const engine::StateColumn column : engine::columns_of_flow) visit(cells.state.*column);
  visit(cells.notes.recovered);
  visit(cells.notes.lifted);
  visit(cells.notes.taken_discharge);
  visit(cells.infiltrated);
}

/// Columns that are asked for together: what steps go on with, what reports do, and what looks do.
enum class SavedPart { state, notes, infiltrated };

struct SavedFlow {
  std::uint64_t cells = 0;
  std::vector<std::uint8_t> columns;  ///< of a row: their numbers among all, ascending
  std::vector<physics::RainClock> rain_clocks;
  bool has_told_not_hyperbolic = false;
  physics::StepNotes of_last_step;  ///< of steps that are watched

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.cells, self.columns, self.rain_clocks, self.has_told_not_hyperbolic,
          self.of_last_step);
  }
  std::size_t bytes_per_row() const { return columns.size() * sizeof(double); }
  /// Takes over what `saved` holds besides columns, and which of these it has.
  void describe(const SavedCells& saved, std::uint64_t cells_of_all);
};

/// What is to be saved with the state.
struct SavedRequest {
  bool has_looks = false, has_notes = false;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.has_looks, self.has_notes);
  }
};

/// What is to be loaded.
struct LoadRequest {
  SavedFlow saved;
  std::vector<SavedPart> parts;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.saved, self.parts);
  }
};

/// Whether steps of a case can go on with what was saved; `present` is what is kept of its flow.
bool fits(const SavedFlow& saved, const SavedFlow& present, const cases::Case& contents);
/// The same of a part of the books, where the state fits.
bool fits(SavedPart part, const SavedFlow& saved, const SavedFlow& present);

/// The columns of cells that rows of a saved flow have, in their order; null for parts that are not
/// among those.
std::vector<std::vector<double>*> columns_in_rows(const SavedFlow& saved,
                                                  const std::vector<SavedPart>& parts,
                                                  SavedCells& cells);
/// What is known besides the columns.
void take_the_rest(const SavedFlow& saved, SavedCells& cells);

/// Puts so many rows of columns, one row behind the other.
void put_rows(std::span<const double* const> columns, std::size_t rows, utils::ByteSink& to);
/// Takes rows of as many columns from where they were put. Columns that are null are left out.
void take_rows(std::span<double* const> columns, std::size_t rows, utils::ByteSource& from);

}  // namespace fields
