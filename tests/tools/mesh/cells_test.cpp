#include "mesh/cells.hpp"

#include <gtest/gtest.h>

#include "support/Error.hpp"
#include "support/text.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Cell;
using mesh_import::Mesh;
using mesh_import::prepare_cells;

Mesh mesh_of(std::vector<mesh_import::Node> nodes, std::vector<Cell> cells) {
  Mesh mesh;
  mesh.nodes = std::move(nodes);
  mesh.cells = std::move(cells);
  mesh.zone_of_cell.assign(mesh.cells.size(), 0);
  mesh.zones = {{}};
  return mesh;
}

std::string error_of(Mesh mesh) {
  return support::message_of([&] { prepare_cells(mesh); });
}

Cell triangle(int a, int b, int c) { return {{a, b, c, -1}}; }
Cell quad(int a, int b, int c, int d) { return {{a, b, c, d}}; }

TEST(Cells, ClockwiseOnesAreTurned) {
  Mesh mesh =
      mesh_of({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {triangle(0, 1, 2), triangle(0, 3, 2)});
  EXPECT_EQ(prepare_cells(mesh).n_turned, 1);
  EXPECT_EQ(mesh.cells[0].nodes, triangle(0, 1, 2).nodes);
  EXPECT_EQ(mesh.cells[1].nodes, triangle(2, 3, 0).nodes);
}

TEST(Cells, QuadrilateralsAreSplitAlongTheShorterDiagonal) {
  // The diagonal from 1 to 3 is the shorter one.
  Mesh mesh = mesh_of({{0, 0, 0}, {1, 0, 0}, {2, 2, 0}, {0, 1, 0}}, {quad(0, 1, 2, 3)});
  EXPECT_EQ(prepare_cells(mesh).n_split, 1);
  ASSERT_EQ(mesh.cells.size(), 2U);
  EXPECT_EQ(mesh.cells[0].nodes, triangle(1, 2, 3).nodes);
  EXPECT_EQ(mesh.cells[1].nodes, triangle(1, 3, 0).nodes);
  EXPECT_EQ(mesh.zone_of_cell.size(), 2U);
}

TEST(Cells, QuadrilateralsWithANotchAreSplitInside) {
  // The shorter diagonal, from 1 to 3, lies outside.
  Mesh mesh = mesh_of({{0, 0, 0}, {4, -1, 0}, {1, 0, 0}, {4, 1, 0}}, {quad(0, 1, 2, 3)});
  prepare_cells(mesh);
  ASSERT_EQ(mesh.cells.size(), 2U);
  EXPECT_EQ(mesh.cells[0].nodes, triangle(0, 1, 2).nodes);
  EXPECT_EQ(mesh.cells[1].nodes, triangle(0, 2, 3).nodes);
}

TEST(Cells, NodesWithoutACellAreLeftOut) {
  Mesh mesh = mesh_of({{9, 9, 9}, {0, 0, 1}, {1, 0, 2}, {0, 1, 3}}, {triangle(1, 2, 3)});
  mesh.line_pieces = {{1, 2, 0}, {0, 1, 0}};
  EXPECT_EQ(prepare_cells(mesh).n_unused_nodes, 1);
  ASSERT_EQ(mesh.nodes.size(), 3U);
  EXPECT_EQ(mesh.nodes[0].z, 1.0);
  EXPECT_EQ(mesh.cells[0].nodes, triangle(0, 1, 2).nodes);
  EXPECT_EQ(mesh.line_pieces[0].node1, 0);
  EXPECT_LT(mesh.line_pieces[1].node1, 0);
}

TEST(Cells, OneThatStandsInTheFileForEachOfItsSurfacesIsJoined) {
  Mesh mesh = mesh_of({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                      {triangle(0, 1, 2), triangle(0, 2, 3), triangle(1, 2, 0)});
  mesh.surface_names = {"all", "part"};
  mesh.zones = {{0}, {1}};
  mesh.zone_of_cell = {0, 0, 1};
  EXPECT_EQ(prepare_cells(mesh).n_repeated_cells, 1);
  ASSERT_EQ(mesh.cells.size(), 2U);
  EXPECT_EQ(mesh.zones.at(static_cast<std::size_t>(mesh.zone_of_cell[0])),
            (std::vector<int>{0, 1}));
  EXPECT_EQ(mesh.zones.at(static_cast<std::size_t>(mesh.zone_of_cell[1])), std::vector<int>{0});
}

TEST(Cells, OnesWithoutAreaOrThatCrossThemselvesAreRefused) {
  EXPECT_EQ(error_of(mesh_of({{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}, {triangle(0, 1, 2)})),
            "cell 1 of the mesh, with the corners (0.000, 0.000), (1.000, 1.000), (2.000, 2.000), "
            "has no area: expected corners that are not in one line.");
  EXPECT_TRUE(support::contains(
      error_of(mesh_of({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {triangle(0, 1, 1)})), "has no area"));
  EXPECT_TRUE(support::contains(
      error_of(mesh_of({{0, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {quad(0, 1, 2, 3)})),
      "crosses itself"));
}

TEST(Cells, AtFaultInOneWayAreCounted) {
  EXPECT_EQ(error_of(mesh_of({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}},
                             {triangle(0, 1, 3), triangle(0, 1, 2), triangle(1, 0, 2)})),
            "cell 2 of the mesh, with the corners (0.000, 0.000), (1.000, 0.000), (2.000, 0.000), "
            "has no area: expected corners that are not in one line. It is the first of 2 such "
            "cells.");
}

TEST(Cells, SplitOrJoinedKeepTheirBed) {
  Mesh mesh = mesh_of({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}},
                      {quad(0, 1, 2, 3), triangle(1, 4, 2), triangle(1, 4, 2)});
  mesh.bed_of_cell = {1.5, 2.5, 3.5};
  mesh.zones = {{0}, {1}};
  mesh.zone_of_cell = {0, 0, 1};
  prepare_cells(mesh);
  EXPECT_EQ(mesh.bed_of_cell, (std::vector<double>{1.5, 1.5, 2.5}));
}

}  // namespace
