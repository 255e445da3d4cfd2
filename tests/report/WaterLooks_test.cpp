#include "report/WaterLooks.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

using cases::Number;
using fields::Field;

/// A flow that is whatever it is told to be.
class ToldFlow : public fields::WholeFlow {
 public:
  using WholeFlow::load;
  std::map<Field, std::vector<double>> columns;

  fields::FlowScales scales() const override { return {}; }
  double stable_step(double) override { return 1.0; }
  double advance(const fields::StepTimes&) override { return 1.0; }
  void read(Field field, std::span<double> values) const override {
    std::copy_n(columns.at(field).begin(), values.size(), values.begin());
  }
  void read(Field, std::span<const Number>, std::span<double>) const override {}
  fields::CellState state(Number cell) const override {
    const auto k = cases::at(cell);
    return {.h = columns.at(Field::depth)[k], .qx = columns.at(Field::discharge_x)[k]};
  }
  fields::ExecutionPath execution_path() const override { return {"told", 1, ""}; }
  void keep_maxima(double) override {}
  void note_maxima(double) override {}
  void watch() override {}
  const physics::StepNotes& notes() const override { return notes_; }
  fields::UnseenDepth unseen_depth(Number) const override { return {}; }
  fields::BoundaryInflow boundary_inflow(int) const override { return {}; }
  void save(engine::State&) const override {}
  void load(const engine::State&) override {}
  void save_notes(engine::SavedNotes&) const override {}
  void load_notes(const engine::SavedNotes&) override {}

 private:
  physics::StepNotes notes_;
};

/// Two triangles of 0.5 m2.
class WaterLooksTest : public testing::Test {
 protected:
  WaterLooksTest() {
    contents.zero_depth = 1e-4;
    contents.mesh.x = {0, 1, 1, 0};
    contents.mesh.y = {0, 0, 1, 1};
    contents.mesh.z = {0, 0, 0, 0};
    contents.mesh.cell_nodes = {0, 1, 2, 0, 2, 3};
    contents.mesh.first_node = {0, 3, 6};
    for (const Field field : {Field::discharge_x, Field::discharge_y, Field::infiltrated_depth}) {
      flow.columns[field] = {0, 0};
    }
    flow.columns[Field::depth] = {1, 1};
  }
  void after(long steps) {
    clock.steps = steps;
    clock.t = static_cast<double>(steps);
  }

  cases::Case contents;
  ToldFlow flow;
  fields::Clock clock;
};

TEST_F(WaterLooksTest, AreDueEvery64Steps) {
  WaterLooks looks(flow, contents, clock);
  EXPECT_EQ(looks.looks(), 1);
  after(63);
  EXPECT_FALSE(looks.is_due());
  after(64);
  EXPECT_TRUE(looks.is_due());
  looks.look();
  looks.look();
  EXPECT_EQ(looks.looks(), 2);
  EXPECT_FALSE(looks.is_due());
}

TEST_F(WaterLooksTest, KeepTheFirstSightAndTheLastVolume) {
  WaterLooks looks(flow, contents, clock);
  EXPECT_FALSE(looks.first_below_zero().is_any());
  flow.columns[Field::depth] = {1, -0.2};
  after(5);
  looks.look();
  flow.columns[Field::depth] = {-0.4, 0.6};
  after(9);
  looks.look();
  EXPECT_EQ(looks.first_below_zero().t, 5.0);
  EXPECT_EQ(looks.first_below_zero().cell, 1);
  EXPECT_EQ(looks.depths().below_zero, 1);
  EXPECT_DOUBLE_EQ(looks.depths().deficit.value(), 0.2);
  EXPECT_DOUBLE_EQ(looks.depths().share(), 0.4);
  flow.columns[Field::depth] = {1, 1};
  after(10);
  looks.look();
  EXPECT_EQ(looks.depths().below_zero, 0);
  EXPECT_EQ(looks.first_below_zero().t, 5.0);
}

TEST_F(WaterLooksTest, AddUpWhatSoilsGiveOut) {
  contents.soils = {{1, cases::HortonParameters{1e-5, 1e-5, 0, 10, 0}},
                    {2, cases::HortonParameters{1e-5, 1e-5, 0, 10, 1e-3}}};
  contents.fields.soil = {0, 1};
  flow.columns[Field::infiltrated_depth] = {0.5, 0.5};
  WaterLooks looks(flow, contents, clock);
  flow.columns[Field::infiltrated_depth] = {0.4, 0.4};  // the second one may have recovered
  after(1);
  looks.look();
  EXPECT_DOUBLE_EQ(looks.given_out(), 0.05);
  EXPECT_EQ(looks.first_given_out().cell, 0);
  flow.columns[Field::infiltrated_depth] = {0.6, -0.1};
  after(2);
  looks.look();
  EXPECT_DOUBLE_EQ(looks.given_out(), 0.1);
  EXPECT_EQ(looks.first_given_out().t, 1.0);
}

TEST_F(WaterLooksTest, CountFilmsAndKeepTheFastestOfTheFirst) {
  flow.columns[Field::depth] = {0.01, 0.01};
  flow.columns[Field::discharge_x] = {0.08, 0.1};
  WaterLooks looks(flow, contents, clock);
  EXPECT_EQ(looks.most_films(), 2);
  EXPECT_EQ(looks.first_film().cell, 1);
  EXPECT_EQ(looks.state_of_first_film().qx, 0.1);
  flow.columns[Field::discharge_x] = {0.0, 0.07};
  after(1);
  looks.look();
  flow.columns[Field::discharge_x] = {0.0, 0.06};  // a Froude number of 19.2
  after(2);
  looks.look();
  EXPECT_EQ(looks.most_films(), 2);
  EXPECT_EQ(looks.first_film().t, 0.0);
}

}  // namespace
