#include "case/read_rain.hpp"

#include <gtest/gtest.h>

#include "case/CollectedMessages.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

class ReadRainTest : public testing::Test {
 protected:
  std::vector<cases::Hyetogram> read(const std::string& text) {
    return cases::read_rain(folder.write("rain.txt", text), messages);
  }

  support::TemporaryFolder folder;
  CollectedMessages messages;
};

TEST_F(ReadRainTest, AHyetogramIsAnIdAStepAndIntervals) {
  const auto rain = read("2\n7 2 60\n0 1e-5\n600 0\n-3 1 0\n5 2e-6");
  ASSERT_EQ(rain.size(), 2u);
  EXPECT_EQ(rain[0].id, 7);
  EXPECT_EQ(rain[0].step, 60);
  EXPECT_EQ(rain[0].times, (std::vector<double>{0.0, 600.0}));
  EXPECT_EQ(rain[0].intensities, (std::vector<double>{1e-5, 0.0}));
  EXPECT_EQ(rain[1].id, -3);
  EXPECT_TRUE(messages.warnings.empty());
}

TEST_F(ReadRainTest, WarnsOfIntervalsOutOfOrderAndOfWhatHardlyIsMeant) {
  read("1\n7 2 -60\n600 1e-5\n0 0");
  ASSERT_EQ(messages.warnings.size(), 2u);
  EXPECT_EQ(messages.warnings[0],
            "hyetogram 7 has an interval that starts before the one above it: of those that have "
            "started, the last in the file counts.");
  EXPECT_EQ(messages.warnings[1], folder.file("rain.txt") +
                                      ", hyetogram 7 has a step of -60 s, expected 0 or more: rain "
                                      "is added at every step of the run.");
}

TEST_F(ReadRainTest, AMalformedIntensityEndsTheRunWithItsPlace) {
  EXPECT_FATAL(
      read("2\n7 0 60\n8 1 60\n0 wet"), 255,
      testing::Eq("Error in file " + folder.file("rain.txt") +
                  ", line 4, hyetogram 1 (of 0 to 1), intensity: found \"wet\", expected a "
                  "finite number.\n"));
}

}  // namespace
