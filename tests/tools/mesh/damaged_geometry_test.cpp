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

/// Mutants of the examples' geometries, each in a process of its own: Gmsh may crash, take all
/// memory (a size that lost its digits asks for billions of cells) or go on for ever. One that
/// reaches the time limit is killed and counted.
class DamagedGeometry : public testing::TestWithParam<unsigned> {
 protected:
  static std::string example(const std::string& name) {
    std::ifstream file(QUILLMERE_SOURCE_DIR "/examples/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

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

TEST_P(DamagedGeometry, EndsInACaseOrInAMessage) {
  const std::string originals[] = {example("lake_at_rest/lake.geo"),
                                   example("flume_dam_break/flume.geo")};
  constexpr int n_mutants = 50;
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

INSTANTIATE_TEST_SUITE_P(Seeds, DamagedGeometry, testing::Values(1U, 2U, 3U, 4U));

}  // namespace
