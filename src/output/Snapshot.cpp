#include "output/Snapshot.hpp"

namespace {

fields::RowsRequest rows_of(const fields::SnapshotColumns& columns) {
  using Bed = utils::CellTable::Bed;
  return {columns.fields, columns.bed_moves ? Bed::first_value : Bed::z_of_the_centre};
}

}  // namespace

Snapshot::Snapshot(const cases::Case& contents)
    : columns_(contents.has_sediments, contents.has_infiltration),
      values_(contents.mesh, rows_of(columns_)) {}

bool Snapshot::write(const std::string& name) {
  return values_.write(name, columns_.header() + '\n');
}

void Snapshot::hand_over(utils::WriterThread& writer, const std::string& name) {
  values_.hand_over(writer, name, columns_.header() + '\n');
}
