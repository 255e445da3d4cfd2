#include "model/SWE_Exner.hpp"

#include <gtest/gtest.h>

#include "interfaces/SedBCDischarge.hpp"
#include "interfaces/SedBCTransmissive.hpp"
#include "interfaces/SedBCWall.hpp"
#include "interfaces/SedBCWaterLevel.hpp"
#include "interfaces/SedFluxCLHLLC.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

class ExnerModel : public testing::Test {
 protected:
  std::unique_ptr<SWE_Exner> square(const support::Side& west = {}) {
    support::Rectangle rectangle{1, 1, 1.0, 1.0};
    rectangle.west = west;
    return support::build_rectangle<SWE_Exner>(rectangle);
  }

  template <class Class>
  int count(const SWE_Exner& model) {
    int n = 0;
    for (const auto& interface : model.interfaces) {
      n += dynamic_cast<const Class*>(interface.get()) != nullptr;
    }
    return n;
  }

  support::RunGlobals globals_{1e-3};
  support::TemporaryFolder folder_;
};

using ExnerModelDeathTest = ExnerModel;

}  // namespace

TEST_F(ExnerModel, EachCodeBuildsItsInterface) {
  const auto model = square();
  EXPECT_EQ(count<SedFluxCLHLLC>(*model), 1);
  EXPECT_EQ(count<SedBCWall>(*model), 4);
  EXPECT_EQ(count<SedBCTransmissive>(*square({-2})), 1);
  EXPECT_EQ(count<SedBCDischarge>(*square({-3, -0.5})), 1);
  EXPECT_EQ(count<SedBCWaterLevel>(*square({-4, 1.5})), 1);
}

TEST_F(ExnerModel, ADischargeBoundaryFeedsNoSediment) {
  const auto model = square({-3, -0.5});
  for (const auto& interface : model->interfaces) {
    if (const auto* bc = dynamic_cast<const SedBCDischarge*>(interface.get())) {
      EXPECT_EQ(bc->q_imposed, -0.5);
      EXPECT_EQ(bc->qs_imposed, 0.0);
    }
  }
}

TEST_F(ExnerModelDeathTest, TimeSeriesAndTheReservedSchemeAreNotDefined) {
  for (const int code : {-33, -44, 2, 0, 7}) {
    EXPECT_FATAL(square({code, 0.0, "nowhere.txt"}), 255,
                 "^Boundary condition of type " + std::to_string(code) + " not defined!\n$");
  }
}

TEST_F(ExnerModel, SedimentLiesOnTheBedAndTheDepthOnTheSediment) {
  const auto model = square();
  utils::TextScanner beds(folder_.write("bed.txt", "10 10"));
  model->setFixedBedLevel(beds);
  utils::TextScanner layers(folder_.write("hs.txt", "0.5 0.25"));
  model->setSedimentsLevel(layers);
  utils::TextScanner initial(folder_.write("ic.txt", "11 0 0 11 0 0"));
  model->setHydrodynamicConditions(initial);
  EXPECT_EQ(model->cells[0]->bed_level, 10.5);
  EXPECT_EQ(model->cells[0]->bed_rock_level, 10.0);
  EXPECT_EQ(model->cells[0]->U.h, 0.5);
  EXPECT_EQ(model->cells[1]->U.h, 0.75);
}

TEST_F(ExnerModel, ABedLoadedAfterTheSedimentDropsItsOffset) {
  const auto model = square();
  model->cells[0]->set_hs(0.5);
  model->cells[0]->set_bed_rock_level(3.0);
  EXPECT_EQ(model->cells[0]->bed_level, 3.0);
  EXPECT_EQ(model->cells[0]->U.hs, 0.5);
}

TEST_F(ExnerModel, ReadsTheFourParametersFromAFileOfTheirOwn) {
  const auto model = square();
  utils::TextScanner file(folder_.write("parameters.txt", "0.03 2.65 0.001 0.4"));
  model->setSedimentsParam(file);
  EXPECT_EQ(Globals_Sed::g_sedimentsManning, 0.03);
  EXPECT_EQ(Globals_Sed::g_sedimentsDensity, 2.65);
  EXPECT_EQ(Globals_Sed::g_d50, 0.001);
  EXPECT_EQ(Globals_Sed::g_sedimentsPorosity, 0.4);
  Globals_Sed::g_sedimentsManning = Globals_Sed::g_sedimentsDensity = 0.0;
  Globals_Sed::g_d50 = Globals_Sed::g_sedimentsPorosity = 0.0;
}
