// VTU files with a PVD that puts them in time, as ParaView opens them.
#pragma once

#include <string>

#include "export/CaseResults.hpp"

namespace exports {

struct VtuOptions {
  std::string output;       ///< name of the PVD; "NAME.pvd" has NAME_0000.vtu ... beside it
  bool has_relief = false;  ///< whether the points lie on the bed, or else at 0
};

/// Writes a file per snapshot, one after the other, one of the largest depths, and the PVD.
void write_vtu(const CaseResults& results, const VtuOptions& options);

}  // namespace exports
