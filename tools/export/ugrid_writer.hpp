// UGRID-1.0 in CF NetCDF: every snapshot in one file, as QGIS opens it as a mesh layer.
#pragma once

#include <optional>
#include <string>

#include "export/CaseResults.hpp"
#include "export/crs.hpp"

namespace exports {

struct UgridOptions {
  std::string output;          ///< name of the file
  std::optional<Crs> crs;      ///< coordinate reference system
  std::string epoch;           ///< date and hour of the time 0 s
  bool is_compressed = false;  ///< netCDF-4, deflated, in place of classic netCDF
};

/// Writes the file, one snapshot after the other. Without netCDF-C in the build a compressed one is
/// refused.
void write_ugrid(const CaseResults& results, const UgridOptions& options);

}  // namespace exports
