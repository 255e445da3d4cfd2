#include "output/Snapshot.hpp"

#include "utils/CellTable.hpp"

using cases::at;

Snapshot::Snapshot(const cases::Case& contents)
    : mesh_(contents.mesh), bed_moves_(contents.has_sediments) {
  for (const fields::FieldInfo& info : fields::field_table) {
    if (!is_in_snapshots(info, contents.has_sediments, contents.has_infiltration)) continue;
    // The bed is the third column, behind x and y, wherever it comes from.
    const bool is_bed = info.field == fields::Field::bed_level;
    fields_.insert(is_bed ? fields_.begin() : fields_.end(), info.field);
  }
}

void Snapshot::gather(const fields::Flow& flow) {
  const std::size_t n_cells = at(mesh_.n_cells());
  values_.resize(fields_.size() * n_cells);
  for (std::size_t k = 0; k < fields_.size(); ++k) {
    flow.read(fields_[k], {values_.data() + k * n_cells, n_cells});
  }
}

bool Snapshot::write(const std::string& name) const {
  using Bed = utils::CellTable::Bed;
  std::string header = "x\ty";
  // Intended: where the bed does not move, zb is the z of the centre, the mean of the vertices,
  // whatever a bed file says.
  if (!bed_moves_) header += "\tzb";
  for (const fields::Field field : fields_) header += std::string("\t") + info(field).column;
  utils::CellTable table(name, header + "\n", bed_moves_ ? Bed::first_value : Bed::z_of_the_centre);
  std::vector<double> row(fields_.size());
  for (cases::Number cell = 0; cell < mesh_.n_cells(); ++cell) {
    for (std::size_t k = 0; k < row.size(); ++k)
      row[k] = values_[k * at(mesh_.n_cells()) + at(cell)];
    const physics::SpacePoint center = mesh_.center_of(cell);
    table.add_row(center.x, center.y, center.z, row);
  }
  return table.commit();
}
