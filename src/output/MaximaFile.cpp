#include "output/MaximaFile.hpp"

#include <utility>

#include "fields/maxima_columns.hpp"

namespace {

std::vector<fields::Field> fields_of_columns() {
  std::vector<fields::Field> all;
  for (const fields::MaximaColumn& column : fields::maxima_columns) all.push_back(column.field);
  return all;
}

}  // namespace

MaximaFile::MaximaFile(std::string name, const cases::Mesh& mesh)
    : name_(std::move(name)), values_(mesh, fields_of_columns()) {}

void MaximaFile::WriteMeasure(fields::Flow& flow, double t) {
  flow.note_maxima(t);
  writer_.wait();
  values_.gather(flow);
  writer_.hand_over([this] {
    return values_.write(name_, fields::maxima_header(), utils::CellTable::Bed::first_value);
  });
}
