#include "output/Snapshot.hpp"

#include "utils/CellTable.hpp"

using cases::at;

Snapshot::Snapshot(const cases::Case& contents)
    : mesh_(contents.mesh), columns_(contents.has_sediments, contents.has_infiltration) {}

void Snapshot::gather(const fields::Flow& flow) {
  const std::size_t n_cells = at(mesh_.n_cells());
  values_.resize(columns_.fields.size() * n_cells);
  for (std::size_t k = 0; k < columns_.fields.size(); ++k) {
    flow.read(columns_.fields[k], {values_.data() + k * n_cells, n_cells});
  }
}

bool Snapshot::write(const std::string& name) const {
  using Bed = utils::CellTable::Bed;
  utils::CellTable table(name, columns_.header() + "\n",
                         columns_.bed_moves ? Bed::first_value : Bed::z_of_the_centre);
  std::vector<double> row(columns_.fields.size());
  for (cases::Number cell = 0; cell < mesh_.n_cells(); ++cell) {
    for (std::size_t k = 0; k < row.size(); ++k)
      row[k] = values_[k * at(mesh_.n_cells()) + at(cell)];
    const physics::SpacePoint center = mesh_.center_of(cell);
    table.add_row(center.x, center.y, center.z, row);
  }
  return table.commit();
}
