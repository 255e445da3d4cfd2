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
#include "tools/mesh/geotiff.hpp"

namespace {

constexpr int n_mutants = 200;

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t n) { return n == 0 ? 0 : random() % n; }

/// Positions of the digits of a text.
std::vector<std::size_t> digits_of(const std::string& text) {
  std::vector<std::size_t> digits;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= '0' && text[i] <= '9') digits.push_back(i);
  }
  return digits;
}

/// A file cut off, with other bytes, other counts and numbers, missing or repeated parts, or junk.
std::string damaged(std::string text, Random& random) {
  const std::size_t at = below(random, text.size());
  switch (random() % 6) {
    case 0:
      return text.substr(0, at);
    case 1:
      for (int k = 0; k < 8; ++k) text[below(random, text.size())] = static_cast<char>(random());
      return text;
    case 2: {
      const auto digits = digits_of(text);
      for (int k = 0; k < 3; ++k) {
        const char* const numbers[] = {"9", "-1", "0", "999999999999", "nan", "1e308", "7"};
        text.replace(digits[below(random, digits.size())], 1, numbers[random() % 7]);
      }
      return text;
    }
    case 3:
      return text.erase(at, below(random, 60));
    case 4:
      return text.insert(at, text.substr(below(random, text.size()), below(random, 60)));
    default:
      for (int k = 0; k < 30; ++k)
        text.insert(text.begin() + static_cast<std::ptrdiff_t>(at), static_cast<char>(random()));
      return text;
  }
}

/// Reads `n_mutants` damaged copies with `read`; the number of those refused.
template <class Read>
int count_refused(const std::string& text, const std::string& name, Read read) {
  const support::TemporaryFolder folder;
  Random random(20);
  int n_refused = 0;
  for (int k = 0; k < n_mutants; ++k) {
    SCOPED_TRACE(k);
    const std::string path = folder.write(name, damaged(text, random));
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
  mesh_import::prepare_cells(mesh, false);
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
