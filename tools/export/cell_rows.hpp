// Result tables with a header and a row per cell, which begins with its centre.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "export/Mesh.hpp"
#include "export/TableReader.hpp"
#include "utils/number_text.hpp"

namespace exports {

/// Whether a coordinate is the one of the centre, up to the six digits that were written of it.
inline bool agrees_with_centre(double found, double centre) {
  return std::fabs(found - centre) <= 1e-5 * std::fabs(centre) + 1e-3;
}

/// Calls take(cell, row) for all rows, of so many numbers. Refuses a table whose header, number of
/// rows or centres are not those of the case; `who` completes what is said of the header.
template <class Take>
void read_cell_rows(TableReader& table, const Mesh& mesh, const std::string& header,
                    const std::string& who, std::size_t numbers, const Take& take) {
  const std::size_t n = mesh.n_cells();
  std::string_view found;
  if (!table.next_line(found) || found != header) {
    std::string shown = header;
    for (char& c : shown) c = c == '\t' ? ' ' : c;
    table.refuse(": expected the header \"" + shown + "\", which " + who + ".");
  }
  std::vector<double> row(numbers);
  std::size_t i = 0;
  for (; table.next_row(row); ++i) {
    if (i == n) {
      table.refuse(": found a row more than the " + std::to_string(n) +
                   " cells of the mesh. Is it a result of this case?");
    }
    const double x = mesh.center_x[i] - mesh.origin[0], y = mesh.center_y[i] - mesh.origin[1];
    if (!agrees_with_centre(row[0], x) || !agrees_with_centre(row[1], y)) {
      table.refuse(": found the centre (" + utils::fixed_text(row[0], 6) + ", " +
                   utils::fixed_text(row[1], 6) + "), expected that of cell " + std::to_string(i) +
                   ", (" + utils::fixed_text(x, 6) + ", " + utils::fixed_text(y, 6) +
                   "). Is it a result of this mesh?");
    }
    take(i, row);
  }
  if (i < n) {
    table.refuse(": found the end of the file after " + std::to_string(i) + " rows, expected " +
                 std::to_string(n) + ", one per cell.");
  }
}

}  // namespace exports
