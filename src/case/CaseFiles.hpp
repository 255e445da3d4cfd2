// The files of a case that grow with its mesh, as reading in their order calls for them: by one
// process, or shared by ranks.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/cell_files.hpp"

namespace cases {

/// What is malformed ends the run with its place.
class CaseFiles {
 public:
  virtual ~CaseFiles() = default;

  /// Does what every process does for itself; what ends it for one of them ends it for all.
  virtual void together(const std::function<void()>& step) = 0;

  // Each answers how many there are, and needs those before it.
  virtual Number read_nodes(const std::string& name) = 0;
  virtual Number read_cells(const std::string& name) = 0;
  /// `scheme` is the code of the flux scheme, which interior edges take.
  virtual Number read_edges(const std::string& name, int scheme) = 0;

  // Both need the cells.
  virtual void read_cell_file(const CellFile& described, const std::string& name) = 0;
  /// The numbers of source terms with these IDs.
  virtual void read_terms(const std::string& name, const std::vector<int>& ids,
                          std::vector<int> CellFields::*column) = 0;

  /// Whether a cell has sediment.
  virtual bool has_sediment() = 0;
};

}  // namespace cases
