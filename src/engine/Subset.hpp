// A part of the cells of a case, for tables of its own.
#pragma once

#include <vector>

#include "case/Mesh.hpp"

namespace engine {

/// Numbers of cells in their case, ascending. Without owned cells it stands for the whole case.
struct Subset {
  std::vector<cases::Number> owned;   ///< what its tables compute
  std::vector<cases::Number> ghosts;  ///< around them: what they read, and others compute
  std::vector<cases::Number> border;  ///< owned cells that are ghosts of others

  bool is_whole() const { return owned.empty(); }
};

/// The subset of these cells (ascending), with so many rings of ghosts around them: the first are
/// the neighbours of owned cells, the second the neighbours of those.
Subset subset_of(const cases::Mesh& mesh, std::vector<cases::Number> owned, int rings = 1);

}  // namespace engine
