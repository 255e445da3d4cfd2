// Values of fields of all cells, gathered at one time and written later as rows of a table.
#pragma once

#include <string>
#include <vector>

#include "case/Mesh.hpp"
#include "fields/Flow.hpp"
#include "utils/CellTable.hpp"

class GatheredFields {
 public:
  /// The mesh must outlive it. A field may come more than once.
  GatheredFields(const cases::Mesh& mesh, std::vector<fields::Field> fields);

  /// Takes the present values.
  void gather(const fields::Flow& flow);
  /// Writes them behind a header, a row per cell; false if the file is not complete, which has been
  /// said.
  bool write(const std::string& name, const std::string& header, utils::CellTable::Bed bed) const;

 private:
  const cases::Mesh& mesh_;
  std::vector<fields::Field> fields_;
  std::vector<double> values_;  ///< of the first field, of the second, ...
};
