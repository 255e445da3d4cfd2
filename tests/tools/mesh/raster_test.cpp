#include "mesh/raster.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "mesh/fields.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/SampleMesh.hpp"
#include "tools/mesh/geotiff.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Mesh;
using mesh_import::Raster;

double plane(double x, double y) { return 100.0 + 0.5 * x - 0.25 * y; }

class RasterFile : public testing::Test {
 protected:
  Raster read(const std::string& text) { return Raster(folder.write("r.asc", text)); }
  std::string error_of(const std::string& text) {
    return support::message_of([&] { read(text); });
  }

  support::TemporaryFolder folder;
};

Mesh one_triangle(double x0, double y0, double size) {
  Mesh mesh;
  mesh.nodes = {{x0, y0, 0}, {x0 + size, y0, 0}, {x0, y0 + size, 0}};
  mesh.cells = {{{0, 1, 2, -1}}};
  mesh.zone_of_cell = {0};
  mesh.zones = {{}};
  return mesh;
}

TEST_F(RasterFile, InterpolatesBetweenTheCentresOfPixels) {
  const Raster raster = read(support::asc_grid(6, 4, 10.0, 20.0, 2.0, plane));
  for (const auto& [x, y] : {std::pair{11.0, 21.0}, {13.7, 24.2}, {21.0, 27.0}, {15.0, 22.9}}) {
    ASSERT_TRUE(raster.interpolate(x, y).has_value()) << x << " " << y;
    EXPECT_NEAR(*raster.interpolate(x, y), plane(x, y), 1e-12) << x << " " << y;
  }
}

TEST_F(RasterFile, HoldsItsOuterPixelsUpToTheBorderAndNoFurther) {
  const Raster raster = read(support::asc_grid(6, 4, 10.0, 20.0, 2.0, plane));
  EXPECT_NEAR(raster.interpolate(10.0, 20.0).value(), plane(11.0, 21.0), 1e-12);
  EXPECT_NEAR(raster.interpolate(22.0, 24.0).value(), plane(21.0, 24.0), 1e-12);
  EXPECT_FALSE(raster.interpolate(9.99, 24.0).has_value());
  EXPECT_FALSE(raster.interpolate(15.0, 28.01).has_value());
}

TEST_F(RasterFile, LeavesOutPixelsWithoutDataUpToHalfOfTheWeight) {
  const Raster raster = read(support::asc_grid(
      2, 1, 0.0, 0.0, 1.0, [](double x, double) { return x < 1.0 ? 7.0 : -9999.0; }));
  EXPECT_DOUBLE_EQ(raster.interpolate(0.9, 0.5).value(), 7.0);
  EXPECT_FALSE(raster.interpolate(1.1, 0.5).has_value());
}

TEST_F(RasterFile, GivesTheMeanOfThePixelsInACell) {
  const Raster raster = read(support::asc_grid(40, 40, 0.0, 0.0, 0.25, plane));
  const Mesh large = one_triangle(1.0, 2.0, 6.0);
  EXPECT_NEAR(raster.mean(large, large.cells[0]).value(), plane(3.0, 4.0), 0.02);
  // Fewer than four centres: a quadrature, exact for a plane.
  const Mesh small = one_triangle(1.3, 2.4, 0.2);
  EXPECT_NEAR(raster.mean(small, small.cells[0]).value(), plane(1.3 + 0.2 / 3, 2.4 + 0.2 / 3),
              1e-12);
}

TEST_F(RasterFile, GivesTheMostFrequentValueInACell) {
  const Raster raster = read(support::asc_grid(
      10, 10, 0.0, 0.0, 1.0, [](double x, double) { return x < 7.0 ? 3.0 : 5.0; }));
  const Mesh mesh = one_triangle(0.0, 0.0, 10.0);
  EXPECT_EQ(raster.most_frequent(mesh, mesh.cells[0]).value(), 3.0);
  const Mesh small = one_triangle(8.1, 1.1, 0.2);
  EXPECT_EQ(raster.most_frequent(small, small.cells[0]).value(), 5.0);
}

TEST_F(RasterFile, TakesCornersOrCentres) {
  const Raster raster =
      read("NCOLS 2\nNROWS 2\nXLLCENTER 10\nYLLCENTER 20\nCELLSIZE 2\n1 2\n3 4\n");
  EXPECT_EQ(raster.interpolate(10.0, 20.0).value(), 3.0);
  EXPECT_EQ(raster.interpolate(12.0, 22.0).value(), 2.0);
}

TEST_F(RasterFile, NamesWhatIsWrongAndWhereAndWhatIsExpected) {
  const std::string path = folder.file("r.asc");
  const std::string header = "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\n";
  EXPECT_EQ(error_of(header + "1 2\n3 4\n"),
            path + ", header: dx is missing; expected it before the values.");
  EXPECT_EQ(error_of(header + "cellsize 1\n1 2\n3 x\n"),
            path + ", line 7: value of a pixel: found \"x\", expected a finite number.");
  EXPECT_EQ(error_of(header + "cellsize 1\n1 2\n3\n"),
            path +
                ", line 8: value of a pixel: found the end of the file, expected a further "
                "value.");
  EXPECT_TRUE(support::contains(error_of(header + "cellsize 1\n1 2\n3 4 5\n"),
                                "expected the end of the file (are ncols and nrows right?)"));
  EXPECT_TRUE(support::contains(error_of(header + "cellsize 0\n1 2\n3 4\n"), "a size above 0"));
  EXPECT_TRUE(support::contains(error_of("ncols 100000\nnrows 100000\nxllcorner 0\nyllcorner 0\n"
                                         "cellsize 1\n1 2\n"),
                                "more than the file can hold"));
}

TEST_F(RasterFile, GivesNodesTheirElevationOrSaysWhereItHasNone) {
  Mesh mesh = one_triangle(1.0, 1.0, 3.0);
  const Raster raster = read(support::asc_grid(5, 5, 0.0, 0.0, 1.0, plane));
  EXPECT_EQ(mesh_import::set_elevations(mesh, raster, std::nullopt), 0);
  EXPECT_NEAR(mesh.nodes[1].z, plane(4.0, 1.0), 1e-9);
  Mesh far = one_triangle(1.0, 1.0, 30.0);
  const std::string error =
      support::message_of([&] { mesh_import::set_elevations(far, raster, std::nullopt); });
  EXPECT_TRUE(
      support::contains(error, "no data at 2 of 3 nodes, the first one at (31.000, 1.000)"));
  EXPECT_EQ(mesh_import::set_elevations(far, raster, 55.0), 2);
  EXPECT_EQ(far.nodes[1].z, 55.0);
}

#ifdef QUILLMERE_HAS_GDAL

TEST_F(RasterFile, MayBeAGeoTiff) {
  const std::string path = folder.file("r.tif");
  support::write_geotiff(path, 6, 4, 10.0, 20.0, 2.0,
                         [](double x, double y) { return x > 20.0 ? -32768.0 : plane(x, y); });
  const Raster raster(path);
  EXPECT_NEAR(raster.interpolate(13.7, 24.2).value(), plane(13.7, 24.2), 1e-4);
  EXPECT_FALSE(raster.interpolate(21.0, 24.0).has_value());
}

TEST_F(RasterFile, ThatIsNoneIsRefused) {
  const std::string path = folder.write("r.tif", "nothing of the kind");
  EXPECT_TRUE(support::starts_with(support::message_of([&] { Raster raster(path); }),
                                   path + ": the file is no raster that can be read (GDAL: "));
}

#else

TEST_F(RasterFile, OfOtherFormatsNeedsGdal) {
  const std::string path = folder.write("r.tif", "");
  EXPECT_TRUE(support::contains(support::message_of([&] { Raster raster(path); }), "libgdal-dev"));
}

#endif

}  // namespace
