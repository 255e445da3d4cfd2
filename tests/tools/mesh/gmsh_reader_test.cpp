#include "mesh/gmsh_reader.hpp"

#include <gtest/gtest.h>

#include "mesh/mesh_file.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/SampleMesh.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Mesh;

class GmshReader : public testing::Test {
 protected:
  Mesh read(const std::string& text) { return mesh_import::read_msh(folder.write("m.msh", text)); }
  std::string error_of(const std::string& text) {
    return support::message_of([&] { read(text); });
  }
  /// A text with one part replaced by another.
  static std::string replaced(std::string text, const std::string& part, const std::string& by) {
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.replace(at, part.size(), by);
  }

  support::TemporaryFolder folder;
  support::SampleMesh sample;
};

void expect_sample(const Mesh& mesh, const support::SampleMesh& sample) {
  ASSERT_EQ(mesh.nodes.size(), static_cast<std::size_t>(sample.n_nodes()));
  ASSERT_EQ(mesh.cells.size(), static_cast<std::size_t>(sample.n_cells()));
  EXPECT_EQ(mesh.line_names, (std::vector<std::string>{"west", "east", "gate"}));
  EXPECT_EQ(mesh.surface_names, (std::vector<std::string>{"left", "right"}));
  EXPECT_EQ(mesh.line_pieces.size(), static_cast<std::size_t>(3 * sample.ny));
  for (const auto& piece : mesh.line_pieces) {
    const double x = piece.line == 0 ? 0.0 : piece.line == 1 ? sample.nx : sample.middle;
    EXPECT_EQ(mesh.nodes[static_cast<std::size_t>(piece.node1)].x, x);
    EXPECT_EQ(mesh.nodes[static_cast<std::size_t>(piece.node2)].x, x);
  }
  for (std::size_t i = 0; i < mesh.cells.size(); ++i) {
    const auto& zone = mesh.zones.at(static_cast<std::size_t>(mesh.zone_of_cell[i]));
    const int surface = mesh.center(mesh.cells[i]).x < sample.middle ? 0 : 1;
    EXPECT_EQ(zone, std::vector<int>{surface});
  }
  EXPECT_EQ(mesh.nodes.back().z, sample.z(sample.nx, sample.ny));
}

TEST_F(GmshReader, ReadsBothVersionsInBothKinds) {
  sample.z = [](double x, double y) { return 0.1 * x + 0.3 * y; };
  for (const bool is_binary : {false, true}) {
    SCOPED_TRACE(is_binary);
    expect_sample(read(sample.msh2(is_binary)), sample);
    expect_sample(read(sample.msh4(is_binary)), sample);
  }
}

TEST_F(GmshReader, CallsGroupsWithoutANameByTheirNumber) {
  std::string text = sample.msh2(false);
  const std::size_t begin = text.find("$PhysicalNames");
  const std::string end = "$EndPhysicalNames\n";
  text.erase(begin, text.find(end) + end.size() - begin);
  const Mesh mesh = read(text);
  EXPECT_EQ(mesh.line_names, (std::vector<std::string>{"11", "12", "13"}));
  EXPECT_EQ(mesh.surface_names, (std::vector<std::string>{"21", "22"}));
}

TEST_F(GmshReader, PassesOverSectionsItDoesNotNeed) {
  const std::string text = sample.msh4(true) + "$NodeData\n1\n\"z\"\n$EndNodeData\n";
  expect_sample(read(text), sample);
}

TEST_F(GmshReader, NamesWhatIsWrongAndWhereAndWhatIsExpected) {
  const std::string good = sample.msh2(false);
  const std::string path = folder.file("m.msh");
  EXPECT_EQ(error_of("hello"),
            path + ", line 1: this is no .msh file of Gmsh: it must begin with $MeshFormat.");
  EXPECT_EQ(error_of(replaced(good, "2.2 0 8", "4.0 0 8")),
            path +
                ", line 2: version: found \"4.0\", expected 2.2 or 4.1 (gmsh -save -format msh41 "
                "writes the latter).");
  EXPECT_EQ(error_of(replaced(good, "3 2 0 0", "3 2 zero 0")),
            path + ", line 16: y: found \"zero\", expected a finite number.");
  EXPECT_TRUE(support::contains(error_of(replaced(good, "$Nodes\n20", "$Nodes\n19")),
                                "expected $EndNodes here (is a count wrong?)"));
  EXPECT_TRUE(support::contains(error_of(replaced(good, "$Nodes\n20", "$Nodes\n2000000")),
                                "the most that the rest of the file can hold"));
  EXPECT_TRUE(
      support::contains(error_of(replaced(good, "1 1 2 11 11", "1 4 2 11 11")),
                        "type of an element: found \"4\", expected 1 (line), 2 (triangle)"));
  EXPECT_TRUE(support::contains(error_of(replaced(good, "\n2 1 0 0", "\n1 1 0 0")),
                                "two nodes have the number 1"));
  EXPECT_TRUE(support::contains(error_of(replaced(good, "11 11 1 6", "11 11 1 99")),
                                "found \"99\", expected the number of a node of this file"));
}

TEST_F(GmshReader, NamesTheByteInABinaryFile) {
  std::string text = sample.msh4(true);
  const std::size_t at = text.find("$MeshFormat\n4.1 1 8\n") + 20;
  text[at] = 0;
  text[at + 3] = 1;
  EXPECT_EQ(error_of(text), folder.file("m.msh") +
                                ", byte 20: byte order: found other bytes, expected the integer 1: "
                                "the file comes from a machine of other byte order.");
}

TEST_F(GmshReader, AsksForElementsOfSurfaces) {
  const std::string text =
      "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Nodes\n2\n1 0 0 0\n2 1 0 0\n$EndNodes\n"
      "$Elements\n1\n1 1 2 7 1 1 2\n$EndElements\n";
  EXPECT_TRUE(support::contains(error_of(text), "the file holds no triangle"));
}

#ifdef QUILLMERE_HAS_GMSH

const char geometry[] = R"(
Point(1) = {0, 0, 0, 0.3}; Point(2) = {2, 0, 0, 0.3};
Point(3) = {2, 1, 0, 0.3}; Point(4) = {0, 1, 0, 0.3};
Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};
Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};
Physical Curve("in") = {4}; Physical Curve("out") = {2}; Physical Surface("bed") = {1};
)";

TEST_F(GmshReader, ReadsWhatGmshItselfWrites) {
  std::string geo = geometry;
  geo += "Mesh 2;\n";
  std::vector<std::string> files;
  for (const char* version : {"2.2", "4.1"}) {
    for (const char* binary : {"0", "1"}) {
      files.push_back(folder.file("saved" + std::to_string(files.size()) + ".msh"));
      geo += std::string("Mesh.MshFileVersion = ") + version + "; Mesh.Binary = " + binary +
             "; Save \"" + files.back() + "\";\n";
    }
  }
  const Mesh expected = mesh_import::read_mesh_file(folder.write("sample.geo", geo));
  EXPECT_GT(expected.cells.size(), 30U);
  EXPECT_EQ(expected.line_names, (std::vector<std::string>{"in", "out"}));
  for (const auto& file : files) {
    SCOPED_TRACE(file);
    const Mesh mesh = mesh_import::read_mesh_file(file);
    ASSERT_EQ(mesh.nodes.size(), expected.nodes.size());
    ASSERT_EQ(mesh.cells.size(), expected.cells.size());
    EXPECT_EQ(mesh.surface_names, expected.surface_names);
    EXPECT_EQ(mesh.line_names, expected.line_names);
    EXPECT_EQ(mesh.line_pieces.size(), expected.line_pieces.size());
    for (std::size_t i = 0; i < mesh.cells.size(); ++i) {
      EXPECT_EQ(mesh.cells[i].nodes, expected.cells[i].nodes);
    }
  }
}

TEST_F(GmshReader, MeshesAGeometryWithoutNamedSurfaces) {
  std::string geo = geometry;
  geo = geo.substr(0, geo.find("Physical Surface")) + "\n";
  const Mesh mesh = mesh_import::read_mesh_file(folder.write("sample.geo", geo));
  EXPECT_GT(mesh.cells.size(), 30U);
  EXPECT_EQ(mesh.line_names, (std::vector<std::string>{"in", "out"}));
}

TEST_F(GmshReader, RepeatsWhatGmshSaysOfAFaultyGeometry) {
  const std::string path = folder.write("sample.geo", "Line(1) = {1, 2};\nnonsense;\n");
  const std::string error = support::message_of([&] { mesh_import::read_mesh_file(path); });
  EXPECT_TRUE(support::starts_with(error, path + ": Gmsh reports:\n  ")) << error;
}

TEST_F(GmshReader, RefusesAGeometryWhoseLastStatementGmshMayLeaveOut) {
  const std::string path = folder.write("sample.geo", std::string(geometry) + "Coherence; ");
  EXPECT_THROW(mesh_import::read_mesh_file(path), tools::Error);
}

#endif

}  // namespace
