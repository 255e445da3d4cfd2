#include "output/MaximaFile.hpp"

#include "fields/maxima_columns.hpp"
#include "utils/CellTable.hpp"

using cases::at;

MaximaFile::MaximaFile(std::string name, const cases::Mesh& mesh)
    : name_(std::move(name)), mesh_(mesh) {}

void MaximaFile::WriteMeasure(fields::Flow& flow, double t) {
  flow.note_maxima(t);
  writer_.wait();
  const std::size_t n_cells = at(mesh_.n_cells());
  values_.resize(fields::maxima_columns.size() * n_cells);
  for (std::size_t k = 0; k < fields::maxima_columns.size(); ++k) {
    flow.read(fields::maxima_columns[k].field, {values_.data() + k * n_cells, n_cells});
  }
  writer_.hand_over([this] { return write(); });
}

bool MaximaFile::write() const {
  utils::CellTable table(name_, fields::maxima_header() + "\n", utils::CellTable::Bed::first_value);
  std::vector<double> row(fields::maxima_columns.size());
  for (cases::Number cell = 0; cell < mesh_.n_cells(); ++cell) {
    for (std::size_t k = 0; k < row.size(); ++k)
      row[k] = values_[k * at(mesh_.n_cells()) + at(cell)];
    const physics::SpacePoint center = mesh_.center_of(cell);
    table.add_row(center.x, center.y, center.z, row);
  }
  return table.commit();
}
