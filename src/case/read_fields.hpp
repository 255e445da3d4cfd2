// Reads the files with a record per cell, in the order of the cells file. `Source` gives the values
// of a file, as utils::TextScanner does.
#pragma once

#include <map>
#include <vector>

#include "case/Case.hpp"
#include "case/Records.hpp"
#include "case/cell_files.hpp"

namespace cases {

/// Fills the columns of a file with numbers for every cell, from its first record on.
template <class Source>
void read_cell_file_run(const CellFile& described, Source& file, const Records& records,
                        CellFields& fields) {
  for (const CellColumn& column : described.columns()) {
    (fields.*column.values).resize(at(records.size()));
  }
  read_each(file, "cell", records, [&](Number cell) {
    for (const CellColumn& column : described.columns()) {
      (fields.*column.values)[at(cell - records.first)] = file.read_number(column.field);
    }
  });
}
template <class Source>
void read_cell_file(const CellFile& described, Source& file, Number n_cells, CellFields& fields) {
  read_cell_file_run(described, file, Records::all(n_cells), fields);
}

/// Reads the ID of a source term per cell. Answers the numbers of the terms in `ids`, of two alike
/// that of the later, and -1 for the ID -1, which means none. `on_unknown(cell, id)` is told of any
/// other.
template <class Source, class OnUnknown>
std::vector<int> read_term_run(Source& file, const Records& records, const std::vector<int>& ids,
                               const OnUnknown& on_unknown) {
  constexpr int none = -1;
  std::map<int, int> numbers;
  for (std::size_t i = 0; i < ids.size(); ++i) numbers[ids[i]] = static_cast<int>(i);
  std::vector<int> terms(at(records.size()), none);
  read_each(file, "cell", records, [&](Number cell) {
    const int id = file.read_integer("source term ID");
    if (id == none) return;
    const auto known = numbers.find(id);
    if (known == numbers.end()) {
      on_unknown(cell, id);
    } else {
      terms[at(cell - records.first)] = known->second;
    }
  });
  return terms;
}
template <class Source, class OnUnknown>
std::vector<int> read_terms(Source& file, Number n_cells, const std::vector<int>& ids,
                            const OnUnknown& on_unknown) {
  return read_term_run(file, Records::all(n_cells), ids, on_unknown);
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
