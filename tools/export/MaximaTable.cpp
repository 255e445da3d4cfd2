#include "export/MaximaTable.hpp"

#include <algorithm>

#include "export/cell_rows.hpp"
#include "support/Error.hpp"

namespace exports {

const MaximaQuantity* find_maxima_quantity(const std::string& name) {
  const auto found = std::find_if(maxima_quantities.begin(), maxima_quantities.end(),
                                  [&](const MaximaQuantity& q) { return q.name == name; });
  return found == maxima_quantities.end() ? nullptr : &*found;
}

MaximaTable read_maxima(const CaseResults& results) {
  if (!results.files.maxima) {
    throw tools::Error(results.files.data_file + " asks for no maxima of flow.");
  }
  constexpr std::size_t first_column = 2;  // behind the centre
  MaximaTable maxima;
  for (std::vector<float>& column : maxima.columns) column.resize(results.mesh.n_cells());
  TableReader table(*results.files.maxima, TableReader::Missing::allowed);
  read_cell_rows(table, results.mesh, fields::maxima_header(), "the table of maxima has",
                 first_column + maxima.columns.size(),
                 [&](std::size_t i, const std::vector<double>& row) {
                   for (std::size_t k = 0; k < maxima.columns.size(); ++k) {
                     maxima.columns[k][i] = static_cast<float>(row[first_column + k]);
                   }
                 });
  return maxima;
}

}  // namespace exports
