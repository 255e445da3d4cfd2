#include "model/PhysicalModel.hpp"

#include <gtest/gtest.h>

#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::k;

/// Four triangles of squares of 1 m, with a dry-depth threshold of 0.01 m.
class PhysicalModelTest : public testing::Test {
 protected:
  PhysicalModelTest() { model->calculateCharLengthMin(); }

  void set_depths(double h0, double h1, double h2, double h3) {
    const double depths[] = {h0, h1, h2, h3};
    for (std::size_t i = 0; i < 4; ++i) model->cells[i]->U.set_values(depths[i], 0.0, 0.0);
  }

  support::RunGlobals globals{0.01};
  std::unique_ptr<SWE> model = support::build_rectangle({2, 1, 2.0, 1.0});
  /// 2 area / perimeter of half a unit square.
  const double length = 1.0 / (2.0 + std::sqrt(2.0));
};

TEST_F(PhysicalModelTest, FindsTheLargestDepth) {
  set_depths(0.5, 3.0, -1.0, 2.0);
  model->findH0();
  EXPECT_EQ(model->h0, 3.0);
}

TEST_F(PhysicalModelTest, TheLargestDepthOfADryDomainIsZero) {
  model->h0 = 7.0;
  set_depths(-1.0, 0.0, -2.0, 0.0);
  model->findH0();
  EXPECT_EQ(model->h0, 0.0);
}

TEST_F(PhysicalModelTest, FindsTheSmallestCharacteristicLength) {
  EXPECT_DOUBLE_EQ(model->char_length_min, length);
  model->cells[2]->char_length = 0.125;
  model->calculateCharLengthMin();
  EXPECT_EQ(model->char_length_min, 0.125);
}

TEST_F(PhysicalModelTest, TheStepIsTheSmallestOfTheWetCells) {
  set_depths(k, 4.0 * k, 9.0 * k, k);
  EXPECT_DOUBLE_EQ(model->dtMin(), length / 3.0);
}

TEST_F(PhysicalModelTest, ADryCellCountsWithTheLargestInitialDepth) {
  set_depths(k, k, 0.0, 0.01);
  model->h0 = 9.0 * k;  // deeper than anything now
  EXPECT_DOUBLE_EQ(model->dtMin(), length / 6.0);
}

TEST_F(PhysicalModelTest, ADryCellCountsWithTheLargestInitialDepthEvenIfThatIsSmall) {
  set_depths(k, k, 0.0, k);
  model->h0 = 0.01 * k;  // celerity 0.1 m/s, below the threshold: does not count
  EXPECT_DOUBLE_EQ(model->dtMin(), length);
  model->h0 = 0.16 * k;  // celerity 0.4 m/s
  EXPECT_DOUBLE_EQ(model->dtMin(), length);
  set_depths(0.0, 0.0, 0.0, 0.0);
  EXPECT_DOUBLE_EQ(model->dtMin(), length / 0.8);
}

TEST_F(PhysicalModelTest, ADryDomainThatStartedDryHasATenthOfItsLength) {
  set_depths(0.0, 0.01, 0.0, -1.0);
  model->h0 = 0.0;
  EXPECT_DOUBLE_EQ(model->dtMin(), length / 10.0);
}

TEST_F(PhysicalModelTest, ADomainThatStartedAtTheThresholdStartedDry) {
  set_depths(0.0, 0.01, 0.0, 0.0);
  model->findH0();
  EXPECT_EQ(model->h0, 0.01);
  EXPECT_DOUBLE_EQ(model->dtMin(), length / 10.0);
}

TEST(EmptyModel, OfTheBaseClassAdvancesNothingAndSaysSo) {
  PhysicalModel base;
  testing::internal::CaptureStdout();
  EXPECT_EQ(base.computeFlowStep(), 0.0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "I am in PhysicalModel::computeFlowStep(), this is not correct!\n");
}

TEST(CellValueRows, AreZeroAndOfTheGivenWidth) {
  CellValueRows rows;
  rows.allocate(3, 4);
  EXPECT_EQ(rows.values.size(), 12u);
  rows.row(1)[0] = 5.0;
  EXPECT_EQ(rows.values[4], 5.0);
  EXPECT_EQ(rows.row(2)[3], 0.0);
}

/// Counts its end.
class Counted : public GenericInterface {
 public:
  Counted(ComputationalCell* cell, const MeshNode& a, const MeshNode& b, int& ended)
      : GenericInterface(cell, nullptr, a, b), ended_(ended) {}
  ~Counted() override { ++ended_; }

 private:
  int& ended_;
};

TEST_F(PhysicalModelTest, ItsEndIsTheEndOfItsInterfaces) {
  int ended = 0;
  for (int i = 0; i < 3; ++i) {
    model->interfaces.push_back(std::make_unique<Counted>(
        model->cells[0].get(), model->mesh_nodes[0], model->mesh_nodes[1], ended));
  }
  model.reset();
  EXPECT_EQ(ended, 3);
}

}  // namespace
