#include "export/raster.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/Tool.hpp"

namespace {

using exports::Grid;
using exports::Mesh;
using exports::Triangulation;

/// Squares of 1 m whose inner nodes are shaken, each cut into two triangles.
Mesh shaken_square(int n) {
  Mesh mesh;
  std::mt19937 random(7);
  std::uniform_real_distribution<double> shift(-0.3, 0.3);
  for (int j = 0; j <= n; ++j) {
    for (int i = 0; i <= n; ++i) {
      const bool is_inner = i > 0 && i < n && j > 0 && j < n;
      mesh.x.push_back(i + (is_inner ? shift(random) : 0.0));
      mesh.y.push_back(j + (is_inner ? shift(random) : 0.0));
      mesh.z.push_back(0.0);
    }
  }
  mesh.first.push_back(0);
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) {
      const int sw = j * (n + 1) + i, se = sw + 1, nw = sw + n + 1, ne = nw + 1;
      for (const int node : {sw, se, ne, sw, ne, nw}) mesh.nodes.push_back(node);
      mesh.first.push_back(static_cast<int>(mesh.nodes.size()) - 3);
      mesh.first.push_back(static_cast<int>(mesh.nodes.size()));
    }
  }
  mesh.center_x.resize(static_cast<std::size_t>(2 * n * n));
  return mesh;
}

bool contains(const Mesh& mesh, const std::array<int, 3>& triangle, double x, double y) {
  for (std::size_t k = 0; k < 3; ++k) {
    const auto a = static_cast<std::size_t>(triangle[k]);
    const auto b = static_cast<std::size_t>(triangle[(k + 1) % 3]);
    const double side =
        (mesh.x[b] - mesh.x[a]) * (y - mesh.y[a]) - (mesh.y[b] - mesh.y[a]) * (x - mesh.x[a]);
    if (side < -1e-12) return false;
  }
  return true;
}

}  // namespace

TEST(Raster, EveryPixelHasTheTriangleThatItsCentreLiesInAndNoneIsMissing) {
  const Mesh mesh = shaken_square(5);
  const Triangulation triangles = exports::triangulate(mesh);
  for (const double resolution : {0.5, 0.125, 0.0371}) {  // with centres on edges and nodes, too
    const Grid grid = exports::grid_over(exports::extent_of(mesh), resolution);
    const std::vector<int> pixels = exports::rasterize(mesh, triangles, grid);
    for (int row = 0; row < grid.rows; ++row) {
      for (int column = 0; column < grid.columns; ++column) {
        const double x = grid.west + (column + 0.5) * resolution;
        const double y = grid.north - (row + 0.5) * resolution;
        const int triangle = pixels[static_cast<std::size_t>(row * grid.columns + column)];
        if (x > 5.0 || y > 5.0 || x < 0.0 || y < 0.0) {
          EXPECT_EQ(triangle, -1);
        } else {
          ASSERT_GE(triangle, 0) << x << ' ' << y;
          EXPECT_TRUE(contains(mesh, triangles.nodes[static_cast<std::size_t>(triangle)], x, y));
        }
      }
    }
  }
}

TEST(Raster, TheGridLiesOnMultiplesOfTheResolution) {
  const Grid grid = exports::grid_over({612001.0, 612019.0, 5235003.0, 5235011.0}, 5.0);
  EXPECT_EQ(grid.west, 612000.0);
  EXPECT_EQ(grid.north, 5235015.0);
  EXPECT_EQ(grid.columns, 4);
  EXPECT_EQ(grid.rows, 3);
}

TEST(Raster, TooManyPixelsAreRefused) {
  EXPECT_THROW(exports::grid_over({0.0, 1e5, 0.0, 1e5}, 0.001), tools::Error);
  EXPECT_THROW(exports::grid_over({-1e308, 1e308, 0.0, 1.0}, 1.0), tools::Error);
}
