// A damaged geometry must end in a case or in a message, whatever Gmsh makes of it.
#include <gtest/gtest.h>

#include <fstream>
#include <iostream>
#include <iterator>

#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"
#include "tools/mesh/damage.hpp"

namespace {

/// Geometries, each imported by a process of its own: Gmsh may crash, take all memory or go on for
/// ever. One that reaches the time limit is killed.
class DamagedGeometry : public testing::Test {
 protected:
  support::RunResult import(const std::string& geometry) {
    folder.write("m.geo", geometry);
    support::RunOptions options;
    options.program = QUILLMERE_MESH_PROGRAM;
    options.address_space = std::size_t{1} << 30;
    options.time_limit = 40.0;
    return support::run_program(folder.path(), {"import", "m.geo", "case", "--overwrite"}, options);
  }

  support::TemporaryFolder folder;
};

/// A surface inside four lines between the corners of a rectangle.
std::string quadrilateral(const std::string& lines, const std::string& size) {
  return "s = " + size +
         ";\nPoint(1) = {0, 0, 0, s}; Point(2) = {2, 0, 0, s};\n"
         "Point(3) = {2, 1, 0, s}; Point(4) = {0, 1, 0, s};\n" +
         lines + "Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};\n";
}

TEST_F(DamagedGeometry, ThatGmshGivesUpInAThreadIsExplained) {
  const auto result = import(quadrilateral(
      "Line(1) = {1, 2}; Line(2) = {2, 4}; Line(3) = {4, 3}; Line(4) = {3, 1};\n", "0.2"));
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(support::contains(result.err, "m.geo: Gmsh reports:\n  Unable to recover the edge"))
      << result.err;
}

TEST_F(DamagedGeometry, ThatAsksForTooManyCellsIsExplained) {
  const auto result = import(quadrilateral(
      "Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};\n", "1e-8"));
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(support::contains(result.err, "m.geo: Gmsh reports:\n  out of memory; expected"))
      << result.err;
}

std::string example(const std::string& name) {
  std::ifstream file(QUILLMERE_SOURCE_DIR "/examples/" + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Mutants : public DamagedGeometry, public testing::WithParamInterface<unsigned> {};

TEST_P(Mutants, OfAGeometryEndInACaseOrInAMessage) {
  const std::string originals[] = {example("lake_at_rest/lake.geo"),
                                   example("flume_dam_break/flume.geo")};
  constexpr int n_mutants = 25;
  std::mt19937 random(GetParam());
  int n_made = 0, n_refused = 0, n_killed = 0;
  for (int k = 0; k < n_mutants; ++k) {
    SCOPED_TRACE(k);
    const auto result = import(support::damaged(originals[k % 2], random) + "\n");
    if (result.timed_out) {
      ++n_killed;
    } else if (result.status == 0) {
      ++n_made;
      EXPECT_EQ(result.err, "");
    } else {
      ++n_refused;
      EXPECT_EQ(result.status, 1);
      EXPECT_TRUE(support::starts_with(result.err, "quillmere-mesh: ")) << result.err;
      EXPECT_GT(result.err.size(), 40U) << result.err;
    }
  }
  std::cout << n_made << " cases, " << n_refused << " messages, " << n_killed << " killed\n";
  EXPECT_GT(n_made, 0);
  EXPECT_GT(n_refused, n_mutants / 4);
  EXPECT_LE(n_killed, n_mutants / 25);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Mutants, testing::Values(1U, 2U));

}  // namespace
