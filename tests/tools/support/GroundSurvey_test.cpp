#include "support/GroundSurvey.hpp"

#include <gtest/gtest.h>

#include <functional>

#include "support/text.hpp"

namespace {

using tools::GroundPoint;

/// Squares of a size from a corner on, each cut in two, with their remarks.
struct Land {
  double x0, y0, size;
  std::function<double(double, double)> z = [](double x, double y) { return 0.01 * x + 0.01 * y; };
  int n = 4;

  std::vector<tools::GroundSurvey::Remark> remarks() const {
    const auto point = [this](int i, int j) {
      const double x = x0 + i * size, y = y0 + j * size;
      return GroundPoint{x, y, z(x, y)};
    };
    tools::GroundSurvey survey;
    for (int i = 0; i <= n; ++i) {
      for (int j = 0; j <= n; ++j) survey.add_node(point(i, j));
    }
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < n; ++j) {
        survey.add_cell({point(i, j), point(i + 1, j), point(i + 1, j + 1)});
        survey.add_cell({point(i, j), point(i + 1, j + 1), point(i, j + 1)});
      }
    }
    return survey.remarks();
  }
  void expect_only(const std::string& kind, const std::string& part) const {
    const auto found = remarks();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].kind, kind);
    EXPECT_TRUE(support::contains(found[0].text, part)) << found[0].text;
  }
};

TEST(GroundSurvey, FindsNothingInFlumesValleysAndIdealBasins) {
  EXPECT_TRUE((Land{0.0, 0.0, 0.05}.remarks().empty()));
  EXPECT_TRUE((Land{-2.0, -1.0, 1.0}.remarks().empty()));
  EXPECT_TRUE((Land{612000.0, 5235000.0, 100.0}.remarks().empty()));
  const auto flat = [](double, double) { return 3.0; };
  EXPECT_TRUE((Land{0.0, 0.0, 500.0, flat}.remarks().empty()));
  EXPECT_TRUE((Land{612000.0, 0.0, 0.1, flat}.remarks().empty()));
}

TEST(GroundSurvey, FindsDegrees) {
  Land{7.1, 46.2, 0.01}.expect_only("degrees",
                                    "the coordinates run from (7.1, 46.2) to (7.14, 46.24)");
  Land{0.0, 0.0, 0.01, [](double x, double) { return 2000.0 * x; }}.expect_only("degrees",
                                                                                "degrees?");
}

TEST(GroundSurvey, FindsSlopesOfSeveralHundredPerCent) {
  Land{0.0, 0.0, 10.0, [](double x, double) { return x > 25.0 ? 50.0 : 0.0; }}.expect_only(
      "slope", "8 of 32 cells are steeper than 300 %, the steepest by 500 % at (");
}

TEST(GroundSurvey, FindsATerrainThatWasForgotten) {
  Land{612000.0, 5235000.0, 100.0, [](double, double) { return 0.0; }}.expect_only(
      "flat ground", "all nodes lie at 0 m: was the terrain forgotten?");
}

}  // namespace
