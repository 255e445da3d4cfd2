#include "export/SnapshotReader.hpp"

#include "export/cell_rows.hpp"
#include "fields/snapshot_columns.hpp"

namespace exports {

void read_snapshot(const CaseResults& results, const SnapshotFile& file, Snapshot& snapshot) {
  const std::size_t n = results.mesh.n_cells();
  const fields::SnapshotColumns columns(results.files.has_sediment, results.files.has_infiltration);
  snapshot.time = file.time;
  for (const fields::Field field : columns.fields) snapshot.columns[field].resize(n);

  TableReader table(file.name);
  const std::size_t first_field = columns.bed_moves ? 2 : 3;
  read_cell_rows(table, results.mesh, columns.header(), "this case's model writes",
                 first_field + columns.fields.size(),
                 [&](std::size_t i, const std::vector<double>& row) {
                   for (std::size_t k = 0; k < columns.fields.size(); ++k) {
                     snapshot.columns[columns.fields[k]][i] = row[first_field + k];
                   }
                 });
  snapshot.below_zero.add(
      dry_below_zero(results.mesh, file.time, snapshot.columns[fields::Field::depth]));
}

}  // namespace exports
