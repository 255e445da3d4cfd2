#include "output/GatheredFields.hpp"

#include <utility>

using cases::at;

GatheredFields::GatheredFields(const cases::Mesh& mesh, std::vector<fields::Field> fields)
    : mesh_(mesh), fields_(std::move(fields)) {}

void GatheredFields::gather(const fields::Flow& flow) {
  const std::size_t n_cells = at(mesh_.n_cells());
  values_.resize(fields_.size() * n_cells);
  for (std::size_t k = 0; k < fields_.size(); ++k) {
    flow.read(fields_[k], {values_.data() + k * n_cells, n_cells});
  }
}

bool GatheredFields::write(const std::string& name, const std::string& header,
                           utils::CellTable::Bed bed) const {
  utils::CellTable table(name, header + "\n", bed);
  std::vector<double> row(fields_.size());
  for (cases::Number cell = 0; cell < mesh_.n_cells(); ++cell) {
    for (std::size_t k = 0; k < row.size(); ++k)
      row[k] = values_[k * at(mesh_.n_cells()) + at(cell)];
    const physics::SpacePoint center = mesh_.center_of(cell);
    table.add_row(center.x, center.y, center.z, row);
  }
  return table.commit();
}
