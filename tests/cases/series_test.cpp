#include "cases/CaseTest.hpp"

namespace {

class Series : public CaseTest {
 protected:
  /// The section results of a run whose western side follows the series.
  std::string discharges(const std::string& code, const std::string& series) {
    c.west = code + " series.txt";
    c.files["series.txt"] = series;
    c.add_sections({c.edges_across(0), c.edges_across(1)}, 0.1);
    run_well();
    return folder.read("sections.txt");
  }
  void expect_refusal(const std::string& code, const std::string& series,
                      const std::string& words) {
    c.west = code + " series.txt";
    c.files["series.txt"] = series;
    expect_stop("Error in file series.txt, " + words);
  }
};

TEST_F(Series, HoldsTheLastDischargePastTheLastSample) {
  const std::string held = discharges("-33", "2\n0 -0.1\n0.2 -0.3\n");
  EXPECT_EQ(held, discharges("-33", "3\n0 -0.1\n0.2 -0.3\n1000 -0.3\n"));
  EXPECT_NE(held, discharges("-33", "3\n0 -0.1\n0.2 -0.3\n1000 -900\n"));
}

TEST_F(Series, HoldsTheLastLevelPastTheLastSample) {
  const std::string held = discharges("-44", "2\n0 1\n0.2 1.1\n");
  EXPECT_EQ(held, discharges("-44", "3\n0 1\n0.2 1.1\n1000 1.1\n"));
  EXPECT_NE(held, discharges("-44", "3\n0 1\n0.2 1.1\n1000 500\n"));
}

TEST_F(Series, GivesTheSameAsTheConstantValueWhenItIsConstant) {
  const std::string series = discharges("-33", "2\n0 -0.25\n10 -0.25\n");
  c.west = "-3 -0.25";
  run_well();
  EXPECT_EQ(folder.read("sections.txt"), series);
}

TEST_F(Series, IgnoresWhatFollowsTheLastSample) {
  EXPECT_EQ(discharges("-33", "2 0 -0.1 10 -0.2"),
            discharges("-33", "2\n0 -0.1\n10 -0.2\n20 -0.9\nend"));
}

TEST_F(Series, OfFewerThanTwoSamplesEndsTheRun) {
  for (const char* code : {"-33", "-44"}) {
    for (const char* count : {"0", "1"}) {
      expect_refusal(code, std::string(count) + "\n0 1\n10 1\n",
                     "line 1, header, number of samples: found \"" + std::string(count) +
                         "\", expected at least 2.\n");
    }
  }
}

TEST_F(Series, WhoseTimesDoNotIncreaseEndsTheRun) {
  for (const char* code : {"-33", "-44"}) {
    for (const char* time : {"10", "9.5", "-1"}) {
      expect_refusal(code, "3\n0 1\n10 2\n" + std::string(time) + " 3\n",
                     "line 4, sample 2 (of 0 to 2), time: found \"" + std::string(time) +
                         "\", expected a time later than that of the sample before.\n");
    }
  }
}

TEST_F(Series, ThatIsMissingEndsTheRun) {
  c.west = "-44 nowhere.txt";
  expect_stop("Fatal error. Impossible to open file nowhere.txt.\n");
}

}  // namespace
