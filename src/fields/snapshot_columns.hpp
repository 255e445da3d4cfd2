// The columns of a snapshot: what writes them and what reads them again.
#pragma once

#include <string>
#include <vector>

#include "fields/Field.hpp"

namespace fields {

struct SnapshotColumns {
  SnapshotColumns(bool has_sediments, bool has_infiltration);

  /// The line above the rows, without its end.
  std::string header() const;

  /// Intended: where the bed does not move, a column zb stands behind x and y that is none of the
  /// fields: the z of the centre, the mean of the vertices, whatever a bed file says.
  bool bed_moves;
  std::vector<Field> fields;  ///< of the columns behind the centre; a bed that moves comes first
};

}  // namespace fields
