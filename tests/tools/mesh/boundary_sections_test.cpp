// Discharges along the boundaries of an imported case.
#include <cmath>
#include <numeric>

#include "tools/mesh/ImportTest.hpp"

namespace {

using support::contains;

class BoundarySections : public support::ImportTest {
 protected:
  support::Words flood(support::Words more = {}) {
    support::Words words = {"--level",    "0.8",
                            "--friction", "0.03",
                            "--boundary", "west=discharge:-1.5m3/s",
                            "--boundary", "east=transmissive",
                            "--end",      "300"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
};

TEST_F(BoundarySections, RecordWhatEntersAndLeaves) {
  const std::string out = import_well(flood());
  EXPECT_TRUE(contains(out,
                       "The discharge along the boundary east is recorded, positive where it "
                       "leaves.\n"))
      << out;
  run_case();
  const auto in = column("out/sections.txt", 1, 0), leaves = column("out/sections.txt", 2, 0);
  ASSERT_GT(in.size(), 50U);
  // The state of the cells stands for what passes their edges, here on six cells across.
  EXPECT_NEAR(in.back(), -1.5, 0.08);
  EXPECT_NEAR(leaves.back(), 1.5, 0.08);
}

TEST_F(BoundarySections, ComeBehindThoseOfInnerLines) {
  import_well(flood({"--section", "gate"}));
  const auto rows = lines("sections.txt");
  ASSERT_EQ(rows.size(), 4U);
  std::vector<int> edges_of_case;
  for (const double left : column("edges.txt", 1, 1)) edges_of_case.push_back(left < 0.0);
  for (std::size_t row = 1; row < rows.size(); ++row) {
    std::istringstream words(rows[row]);
    std::size_t count = 0, edge = 0;
    words >> count;
    EXPECT_EQ(count, 3U);
    while (words >> edge) EXPECT_EQ(edges_of_case.at(edge), row == 1 ? 0 : 1);
  }
}

TEST_F(BoundarySections, LeaveOutWallsAndWhatHasNoName) {
  import_well({"--level", "0.8", "--boundary", "west=wall", "--boundary", "east=level:0.8"});
  EXPECT_EQ(lines("sections.txt").size(), 2U);
}

TEST_F(BoundarySections, AreLeftOutWhereNotWanted) {
  import_well(flood({"--no-boundary-sections"}));
  EXPECT_FALSE(folder.has("case/sections.txt"));
}

}  // namespace
