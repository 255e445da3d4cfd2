// Reads the files with a record per cell, in the order of the cells file. `Source` gives the values
// of a file, as utils::TextScanner does.
#pragma once

#include <map>
#include <vector>

#include "case/Case.hpp"

namespace cases {

struct NamedColumn {
  const char* field;  ///< for messages
  std::vector<double>& values;
};

template <class Source, class... Columns>
void read_columns(Source& file, Number n_cells, const Columns&... columns) {
  (columns.values.resize(at(n_cells)), ...);
  for (Number cell = 0; cell < n_cells && file.goes_on(); ++cell) {
    file.begin_record("cell", cell, n_cells);
    ((columns.values[at(cell)] = file.read_number(columns.field)), ...);
  }
}

template <class Source>
void read_bed(Source& file, Number n_cells, CellFields& fields) {
  read_columns(file, n_cells, NamedColumn{"bed level", fields.bed});
}

template <class Source>
void read_sediment(Source& file, Number n_cells, CellFields& fields) {
  read_columns(file, n_cells, NamedColumn{"sediment thickness", fields.sediment});
}

template <class Source>
void read_manning(Source& file, Number n_cells, CellFields& fields) {
  read_columns(file, n_cells, NamedColumn{"Manning coefficient", fields.manning});
}

template <class Source>
void read_initial_state(Source& file, Number n_cells, CellFields& fields) {
  read_columns(file, n_cells, NamedColumn{"free-surface level", fields.level},
               NamedColumn{"unit discharge qx", fields.qx},
               NamedColumn{"unit discharge qy", fields.qy});
}

template <class Source>
void read_infiltrated(Source& file, Number n_cells, CellFields& fields) {
  read_columns(file, n_cells, NamedColumn{"infiltrated depth", fields.infiltrated});
}

/// Reads the ID of a source term per cell. Answers the numbers of the terms in `ids`, of two alike
/// that of the later, and -1 for the ID -1, which means none. `on_unknown(cell, id)` is told of any
/// other.
template <class Source, class OnUnknown>
std::vector<int> read_terms(Source& file, Number n_cells, const std::vector<int>& ids,
                            const OnUnknown& on_unknown) {
  constexpr int none = -1;
  std::map<int, int> numbers;
  for (std::size_t i = 0; i < ids.size(); ++i) numbers[ids[i]] = static_cast<int>(i);
  std::vector<int> terms(at(n_cells), none);
  for (Number cell = 0; cell < n_cells && file.goes_on(); ++cell) {
    file.begin_record("cell", cell, n_cells);
    const int id = file.read_integer("source term ID");
    if (id == none) continue;
    const auto known = numbers.find(id);
    if (known == numbers.end()) {
      on_unknown(cell, id);
    } else {
      terms[at(cell)] = known->second;
    }
  }
  return terms;
}

/// Ends the run: the case has no source term of this ID.
[[noreturn]] void end_at_unknown_term(Number cell, int id);

/// The IDs of hyetograms or soils.
template <class Term>
std::vector<int> ids_of(const std::vector<Term>& terms) {
  std::vector<int> ids;
  for (const Term& term : terms) ids.push_back(term.id);
  return ids;
}

}  // namespace cases
