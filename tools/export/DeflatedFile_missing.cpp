// In place of the deflated files where the library for them is not installed.
#include "export/DeflatedFile.hpp"
#include "support/Error.hpp"

namespace exports {

DeflatedFile::DeflatedFile(const std::string&, const std::string&, const ugrid::Definitions&) {
  throw tools::Error(
      "This program was built without netCDF-C, which --compress needs. Install it (Debian: "
      "libnetcdf-dev) and build again; without --compress no library is needed.");
}
DeflatedFile::~DeflatedFile() = default;

void DeflatedFile::put(std::size_t, std::size_t, std::span<const int>) {}
void DeflatedFile::put(std::size_t, std::size_t, std::span<const float>) {}
void DeflatedFile::put(std::size_t, std::size_t, std::span<const double>) {}
void DeflatedFile::close() {}

}  // namespace exports
