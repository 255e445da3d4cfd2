#include "export/SnapshotReader.hpp"

#include <cmath>
#include <string>

#include "export/TableReader.hpp"
#include "fields/snapshot_columns.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

void expect_header(TableReader& table, const std::string& expected) {
  std::string_view header;
  if (!table.next_line(header) || header != expected) {
    std::string shown = expected;
    for (char& c : shown) c = c == '\t' ? ' ' : c;
    table.refuse(": expected the header \"" + shown + "\", which this case's model writes.");
  }
}

/// Whether a coordinate is the one of the centre, up to the six digits that were written of it.
bool agrees(double found, double centre) {
  return std::fabs(found - centre) <= 1e-5 * std::fabs(centre) + 1e-3;
}

}  // namespace

void read_snapshot(const CaseResults& results, const SnapshotFile& file, Snapshot& snapshot) {
  const Mesh& mesh = results.mesh;
  const std::size_t n = mesh.n_cells();
  const fields::SnapshotColumns columns(results.files.has_sediment, results.files.has_infiltration);
  snapshot.time = file.time;
  for (const fields::Field field : columns.fields) snapshot[field].resize(n);

  TableReader table(file.name);
  expect_header(table, columns.header());
  const std::size_t first_field = columns.bed_moves ? 2 : 3;
  std::vector<double> row(first_field + columns.fields.size());
  std::size_t i = 0;
  for (; table.next_row(row); ++i) {
    if (i == n) {
      table.refuse(": found a row more than the " + std::to_string(n) +
                   " cells of the mesh. Is it a result of this case?");
    }
    const double x = mesh.center_x[i] - mesh.origin[0], y = mesh.center_y[i] - mesh.origin[1];
    if (!agrees(row[0], x) || !agrees(row[1], y)) {
      table.refuse(": found the centre (" + utils::fixed_text(row[0], 6) + ", " +
                   utils::fixed_text(row[1], 6) + "), expected that of cell " + std::to_string(i) +
                   ", (" + utils::fixed_text(x, 6) + ", " + utils::fixed_text(y, 6) +
                   "). Is it a result of this mesh?");
    }
    for (std::size_t k = 0; k < columns.fields.size(); ++k) {
      snapshot[columns.fields[k]][i] = static_cast<float>(row[first_field + k]);
    }
  }
  if (i < n) {
    table.refuse(": found the end of the file after " + std::to_string(i) + " rows, expected " +
                 std::to_string(n) + ", one per cell.");
  }
  snapshot.below_zero.add(dry_below_zero(mesh, file.time, snapshot[fields::Field::depth]));
}

}  // namespace exports
