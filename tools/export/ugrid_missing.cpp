// In place of the writer of UGRID where the library for it is not installed.
#include "export/ugrid_writer.hpp"
#include "support/Error.hpp"

namespace exports {

void write_ugrid(const CaseResults&, const UgridOptions&) {
  throw tools::Error(
      "This program was built without NetCDF. Install netCDF-C (Debian: libnetcdf-dev) and build "
      "it again; \"vtu\" needs no library.");
}

}  // namespace exports
