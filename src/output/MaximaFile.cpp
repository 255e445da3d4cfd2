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
    : name_(std::move(name)),
      values_(mesh, {fields_of_columns(), utils::CellTable::Bed::first_value}) {}

void MaximaFile::WriteMeasure(fields::Flow& flow, double t) {
  flow.note_maxima(t);
  writer_.wait();
  values_.gather(flow);
  values_.hand_over(writer_, name_, fields::maxima_header() + '\n');
}
