// The fields that the tables of an engine hold.
#pragma once

#include <span>

#include "case/Case.hpp"
#include "engine/Engine.hpp"
#include "fields/Flow.hpp"

namespace fields {

class TableFields {
 public:
  /// Case (or that of a part) and engine must outlive it; cells are named by their numbers there.
  TableFields(const cases::Case& contents, engine::Engine& engine)
      : case_(contents), engine_(engine) {}

  /// The present values of a field: of all cells that the engine computes, in the order of their
  /// numbers, or of those given among them.
  void read(Field field, std::span<double> values) const;
  void read(Field field, std::span<const cases::Number> cells, std::span<double> values) const;
  CellState state(cases::Number cell) const;

 private:
  /// The column that holds a field; null: all cells have what the case says, or 0.
  const engine::Column* column_of(Field field) const;
  double of_maxima(Field field, cases::Number cell) const;
  /// Of a field without a column.
  double of_case(Field field, cases::Number cell) const;

  const cases::Case& case_;
  engine::Engine& engine_;  ///< its threads read columns too
};

}  // namespace fields
