// Damaged files must be refused, or read if they still make sense, and never end the process.
#include <gtest/gtest.h>

#include <random>

#include "mesh/cells.hpp"
#include "mesh/edges.hpp"
#include "mesh/mesh_file.hpp"
#include "mesh/raster.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "tools/mesh/SampleMesh.hpp"
#include "tools/mesh/damage.hpp"
#include "tools/mesh/geotiff.hpp"

namespace {

constexpr int n_mutants = 200;

/// Reads `n_mutants` damaged copies with `read`; the number of those refused.
template <class Read>
int count_refused(const std::string& text, const std::string& name, Read read) {
  const support::TemporaryFolder folder;
  std::mt19937 random(20);
  int n_refused = 0;
  for (int k = 0; k < n_mutants; ++k) {
    SCOPED_TRACE(k);
    const std::string path = folder.write(name, support::damaged(text, random));
    try {
      read(path);
    } catch (const tools::Error& error) {
      EXPECT_GT(std::string(error.what()).size(), 20U);
      ++n_refused;
    }
  }
  return n_refused;
}

void read_mesh(const std::string& path) {
  mesh_import::Mesh mesh = mesh_import::read_mesh_file(path);
  mesh_import::prepare_cells(mesh);
  mesh_import::make_edges(mesh);
}

void expect_most_are_refused(int n_refused) {
  EXPECT_GT(n_refused, n_mutants / 4);
  EXPECT_LT(n_refused, n_mutants);  // some damage is only another number
}

TEST(DamagedFiles, OfGmsh) {
  const support::SampleMesh sample;
  for (const bool is_binary : {false, true}) {
    SCOPED_TRACE(is_binary);
    expect_most_are_refused(count_refused(sample.msh2(is_binary), "m.msh", read_mesh));
    expect_most_are_refused(count_refused(sample.msh4(is_binary), "m.msh", read_mesh));
  }
}

TEST(DamagedFiles, OfSms) {
  const support::SampleMesh sample;
  expect_most_are_refused(count_refused(sample.sms(), "m.2dm", read_mesh));
  expect_most_are_refused(count_refused(sample.sms(true), "m.2dm", read_mesh));
}

TEST(DamagedFiles, OfTerrain) {
  const std::string grid =
      support::asc_grid(8, 6, 100.0, 200.0, 2.5, [](double x, double y) { return x - y; });
  expect_most_are_refused(count_refused(grid, "r.asc", [](const std::string& path) {
    mesh_import::Raster(path).interpolate(101.0, 203.0);
  }));
}

#ifdef QUILLMERE_HAS_GDAL
TEST(DamagedFiles, OfGeoTiff) {
  const support::TemporaryFolder folder;
  support::write_geotiff(folder.file("r.tif"), 8, 6, 100.0, 200.0, 2.5,
                         [](double x, double y) { return x - y; });
  expect_most_are_refused(count_refused(folder.read("r.tif"), "r.tif", [](const std::string& path) {
    mesh_import::Raster(path).interpolate(101.0, 203.0);
  }));
}
#endif

}  // namespace
