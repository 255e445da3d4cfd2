// Codes of the edges file that stand for an interior edge, and what they need.
#include "cases/CaseTest.hpp"

namespace {

using EdgeCodes = CaseTest;

TEST_F(EdgeCodes, AnInteriorEdgeWithoutARightCellIsRefused) {
  for (const char* code : {"-1", "1"}) {
    c.west = code;
    const support::RunResult result = run();
    EXPECT_EQ(result.status, 255) << code;
    EXPECT_EQ(result.signal, 0) << code;
    EXPECT_TRUE(support::contains(result.err, "Error in file edges.txt, line ")) << result.err;
    EXPECT_TRUE(support::contains(result.err, "boundary code: found \"" + std::string(code) +
                                                  "\", expected a boundary condition"))
        << result.err;
  }
}

TEST_F(EdgeCodes, TheCodeOfTheSchemeIsAnInteriorEdgeToo) {
  c.initial = [](double x, double) { return support::InitialState{x < 2.0 ? 2.0 : 1.0}; };
  c.add_snapshots({0.9});
  run_well();
  const std::string expected = folder.read("out/pic_0_90.txt");
  std::string edges = c.edges_text();
  for (std::size_t at = edges.find(" -1\n"); at != std::string::npos; at = edges.find(" -1\n")) {
    edges.replace(at, 4, " 1\n");
  }
  c.files["edges.txt"] = edges;
  run_well();  // without a warning
  EXPECT_EQ(folder.read("out/pic_0_90.txt"), expected);
}

}  // namespace
