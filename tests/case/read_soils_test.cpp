#include "case/read_soils.hpp"

#include <gtest/gtest.h>

#include "case/CollectedMessages.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

class ReadSoilsTest : public testing::Test {
 protected:
  std::vector<cases::Soil> read(const std::string& text) {
    return cases::read_soils(folder.write("soils.txt", text), messages);
  }

  support::TemporaryFolder folder;
  CollectedMessages messages;
};

TEST_F(ReadSoilsTest, ASoilIsAnIdAModelAndItsParameters) {
  const auto soils = read("2\n3 Horton 2e-5 1e-6 4 0.5 0\n9 GreenAmpt 1e-6 0.1 0.2 0.4 1 1e-5");
  ASSERT_EQ(soils.size(), 2u);
  EXPECT_EQ(soils[0].id, 3);
  const auto& horton = std::get<cases::HortonParameters>(soils[0].parameters);
  EXPECT_EQ(horton.f0, 2e-5);
  EXPECT_EQ(horton.fc, 1e-6);
  EXPECT_EQ(horton.k, 4.0);
  EXPECT_EQ(horton.Fmax, 0.5);
  EXPECT_EQ(horton.kr, 0.0);
  EXPECT_EQ(soils[1].id, 9);
  const auto& green_ampt = std::get<cases::GreenAmptParameters>(soils[1].parameters);
  EXPECT_EQ(green_ampt.Ks, 1e-6);
  EXPECT_EQ(green_ampt.psi, 0.1);
  EXPECT_EQ(green_ampt.theta_i, 0.2);
  EXPECT_EQ(green_ampt.theta_s, 0.4);
  EXPECT_EQ(green_ampt.L, 1.0);
  EXPECT_EQ(green_ampt.kr, 1e-5);
  EXPECT_TRUE(messages.warnings.empty());
}

TEST_F(ReadSoilsTest, WarnsOfWhatHardlyIsMeant) {
  read("1\n3 Horton 2e-5 1e-6 4 -0.5 0");
  ASSERT_EQ(messages.warnings.size(), 1u);
  EXPECT_EQ(messages.warnings[0], folder.file("soils.txt") +
                                      ", soil 3: Fmax is -0.5 m, expected more than 0: the soil "
                                      "has no room for water.");
}

TEST_F(ReadSoilsTest, AModelThatThereIsNotEndsTheRun) {
  EXPECT_FATAL_OUTPUT(read("1\n3 horton 2e-5 1e-6 4 0.5 0"), 255,
                      testing::Eq("Infiltration type not recognized. Type: horton\n"));
}

}  // namespace
