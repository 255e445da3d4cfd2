#include "mesh/edges.hpp"

#include <gtest/gtest.h>

#include <map>

#include "mesh/cells.hpp"
#include "mesh/gmsh_reader.hpp"
#include "mesh/sections.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/SampleMesh.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Edge;
using mesh_import::Mesh;

Mesh sample_mesh(const support::SampleMesh& sample) {
  const support::TemporaryFolder folder;
  Mesh mesh = mesh_import::read_msh(folder.write("m.msh", sample.msh4(false)));
  mesh_import::prepare_cells(mesh);
  return mesh;
}

/// Where the normal of an edge points, seen from the centre of a cell: positive away from it.
double outwards(const Mesh& mesh, const Edge& edge, int cell) {
  const auto& a = mesh.nodes[static_cast<std::size_t>(edge.node1)];
  const auto& b = mesh.nodes[static_cast<std::size_t>(edge.node2)];
  const auto center = mesh.center(mesh.cells[static_cast<std::size_t>(cell)]);
  const double nx = b.y - a.y, ny = a.x - b.x;
  return nx * (0.5 * (a.x + b.x) - center.x) + ny * (0.5 * (a.y + b.y) - center.y);
}

void expect_normals_leave_left_cells(const Mesh& mesh, const std::vector<Edge>& edges) {
  for (const Edge& edge : edges) {
    EXPECT_GT(outwards(mesh, edge, edge.left), 0.0);
    if (!edge.is_boundary()) {
      EXPECT_LT(outwards(mesh, edge, edge.right), 0.0);
    }
  }
}

std::vector<double> bed_of(const Mesh& mesh) {
  std::vector<double> bed;
  for (const auto& cell : mesh.cells) bed.push_back(mesh.center(cell).z);
  return bed;
}

class Edges : public testing::Test {
 protected:
  Edges() {
    sample.z = [](double x, double y) { return (x - 1.3) * (x - 1.3) + 0.1 * y; };
  }

  support::SampleMesh sample;
};

TEST_F(Edges, SurroundEveryCellOnceWithNormalsOutOfTheLeftOne) {
  sample.clockwise = true;
  const Mesh mesh = sample_mesh(sample);
  const auto edges = mesh_import::make_edges(mesh);
  std::map<int, int> edges_of_cell;
  int n_boundary = 0;
  for (const Edge& edge : edges) {
    ++edges_of_cell[edge.left];
    if (!edge.is_boundary()) ++edges_of_cell[edge.right];
    n_boundary += edge.is_boundary();
  }
  EXPECT_EQ(n_boundary, 2 * (sample.nx + sample.ny));
  EXPECT_EQ(edges_of_cell.size(), mesh.cells.size());
  for (const auto& [cell, n] : edges_of_cell) EXPECT_EQ(n, 3) << cell;
  expect_normals_leave_left_cells(mesh, edges);
}

TEST_F(Edges, NameTheLowerCellFirstUnlessTheyAreFixed) {
  const Mesh mesh = sample_mesh(sample);
  auto edges = mesh_import::make_edges(mesh);
  const auto bed = bed_of(mesh);
  const auto lower_first = [&bed](const Edge& edge) {
    return edge.is_boundary() ||
           bed[static_cast<std::size_t>(edge.left)] <= bed[static_cast<std::size_t>(edge.right)];
  };
  std::vector<bool> is_fixed(edges.size(), false);
  std::size_t fixed = 0;
  while (lower_first(edges[fixed])) ++fixed;
  is_fixed[fixed] = true;
  EXPECT_GT(mesh_import::turn_edges_uphill(edges, bed, is_fixed), 3);
  for (std::size_t i = 0; i < edges.size(); ++i) EXPECT_EQ(lower_first(edges[i]), i != fixed);
  expect_normals_leave_left_cells(mesh, edges);
}

TEST_F(Edges, AreFoundByTheirNodes) {
  const Mesh mesh = sample_mesh(sample);
  const auto edges = mesh_import::make_edges(mesh);
  const mesh_import::EdgeIndex index(edges, mesh.nodes.size());
  for (std::size_t i = 0; i < edges.size(); ++i) {
    EXPECT_EQ(index.find(edges[i].node1, edges[i].node2), static_cast<int>(i));
    EXPECT_EQ(index.find(edges[i].node2, edges[i].node1), static_cast<int>(i));
  }
  EXPECT_EQ(index.find(0, sample.n_nodes() - 1), -1);
  EXPECT_EQ(index.find(-1, 3), -1);
}

TEST_F(Edges, OfCellsThatOverlapAreRefused) {
  Mesh mesh;
  mesh.nodes = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0.5, 2, 0}};
  mesh.cells = {{{0, 1, 2, -1}}, {{0, 1, 3, -1}}};
  const std::string error = support::message_of([&] { mesh_import::make_edges(mesh); });
  EXPECT_EQ(error,
            "the edge from (0.000, 0.000) to (1.000, 0.000): found two cells on the same side "
            "(cells 1 and 2 of the mesh among them), expected one cell on each side: cells "
            "overlap.");
}

class Sections : public Edges {
 protected:
  mesh_import::Section make(const std::string& request) {
    mesh = sample_mesh(sample);
    edges = mesh_import::make_edges(mesh);
    return mesh_import::make_section(mesh, edges, {edges, mesh.nodes.size()}, request);
  }
  std::string error_of(const std::string& request) {
    return support::message_of([&] { make(request); });
  }

  Mesh mesh;
  std::vector<Edge> edges;
};

TEST_F(Sections, AreOrientedAlikeToTheRightOfTheLine) {
  const auto section = make("gate");  // from south to north
  EXPECT_EQ(section.edges.size(), static_cast<std::size_t>(sample.ny));
  EXPECT_DOUBLE_EQ(section.length, sample.ny);
  EXPECT_DOUBLE_EQ(section.nx, 1.0);
  for (const int i : section.edges) {
    const Edge& edge = edges[static_cast<std::size_t>(i)];
    EXPECT_LT(mesh.center(mesh.cells[static_cast<std::size_t>(edge.left)]).x, sample.middle);
    EXPECT_GT(outwards(mesh, edge, edge.left), 0.0);
  }
}

TEST_F(Sections, MayBeReversed) {
  const auto section = make("gate=reversed");
  EXPECT_DOUBLE_EQ(section.nx, -1.0);
  for (const int i : section.edges) {
    const Edge& edge = edges[static_cast<std::size_t>(i)];
    EXPECT_GT(mesh.center(mesh.cells[static_cast<std::size_t>(edge.left)]).x, sample.middle);
    EXPECT_GT(outwards(mesh, edge, edge.left), 0.0);
  }
}

TEST_F(Sections, OfPiecesInAnyOrderAndDirectionFollowTheFirstPiece) {
  sample.ny = 5;
  mesh = sample_mesh(sample);
  std::vector<mesh_import::LinePiece> gate;
  for (const auto& piece : mesh.line_pieces) {
    if (piece.line == 2) gate.push_back(piece);
  }
  std::swap(gate[0], gate[3]);
  std::swap(gate[1].node1, gate[1].node2);
  std::swap(gate[4].node1, gate[4].node2);
  mesh.line_pieces = gate;
  edges = mesh_import::make_edges(mesh);
  const auto section = mesh_import::make_section(mesh, edges, {edges, mesh.nodes.size()}, "gate");
  EXPECT_EQ(section.edges.size(), 5U);
  EXPECT_DOUBLE_EQ(section.nx, 1.0);
  for (const int i : section.edges) {
    const Edge& edge = edges[static_cast<std::size_t>(i)];
    EXPECT_LT(mesh.center(mesh.cells[static_cast<std::size_t>(edge.left)]).x, sample.middle);
  }
}

TEST_F(Sections, NeedOneChainOfInnerEdges) {
  EXPECT_EQ(error_of("bridge"),
            "--section bridge: the mesh has no line \"bridge\"; it has: west, east, gate.");
  EXPECT_TRUE(
      support::contains(error_of("west"), "is on the boundary, which is recorded by itself"));
  mesh = sample_mesh(sample);
  mesh.line_pieces.erase(mesh.line_pieces.begin() + 2 * sample.ny + 1);  // the middle of the gate
  edges = mesh_import::make_edges(mesh);
  EXPECT_THROW(mesh_import::make_section(mesh, edges, {edges, mesh.nodes.size()}, "gate"),
               tools::Error);
}

}  // namespace
