// Writes one line of gauge results.
#pragma once

#include <vector>

#include "model/ComputationalCell.hpp"
#include "utils/OutputFile.hpp"

class COutput {
 public:
  /// Body of a gauge writer: copies the cells' states into `buffer`, lets the loop go on, and
  /// appends the line of the given time (s). A gauge without a cell keeps its buffer as it is. A
  /// file that is not open ends the run.
  void Write(utils::LineFile& out, const std::vector<const ComputationalCell*>& cells, double time,
             std::vector<HydraulicVariableSWE>& buffer) const;
};
