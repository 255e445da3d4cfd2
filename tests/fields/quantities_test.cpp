#include "fields/quantities.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace {

using fields::Field;

/// A wet cell, a dry one, and one that the first scheme left below zero.
class Quantities : public testing::Test {
 protected:
  Quantities() {
    columns[Field::depth] = {2.0, 0.001, -0.5};
    columns[Field::discharge_x] = {3.0, 1.0, 1.0};
    columns[Field::discharge_y] = {4.0, 1.0, 1.0};
    columns[Field::largest_depth] = {2.5, 0.001, -0.25};
    columns[Field::peak_discharge] = {7.0, 0.0, 0.0};
    columns[Field::peak_depth] = {2.75, 0.0, 0.0};
  }
  std::map<std::string, std::vector<double>> values_of(
      const std::vector<fields::Quantity>& quantities) const {
    std::map<std::string, std::vector<double>> all;
    for (const fields::Quantity& quantity : quantities) {
      fields::evaluate(quantity, {columns, bed, 0.01}, all[fields::variable_name(quantity)]);
    }
    return all;
  }

  fields::Columns columns;
  std::vector<double> bed{10.0, 20.0, 30.0};
};

TEST_F(Quantities, OfWaterAreHiddenInDryCellsAndDepthsBelowZeroAreZero) {
  const auto values = values_of(fields::dataset_quantities(false, false));
  EXPECT_EQ(values.at("depth"), (std::vector<double>{2.0, 0.001, 0.0}));
  EXPECT_EQ(values.at("level")[0], 12.0);
  EXPECT_EQ(values.at("velocity_x")[0], 1.5);
  EXPECT_EQ(values.at("velocity_y")[0], 2.0);
  for (const char* const hidden : {"level", "velocity_x", "velocity_y"}) {
    EXPECT_TRUE(std::isnan(values.at(hidden)[1])) << hidden;
    EXPECT_TRUE(std::isnan(values.at(hidden)[2])) << hidden;
  }
  EXPECT_EQ(values.at("unit_discharge_y"), (std::vector<double>{4.0, 1.0, 1.0}));
  EXPECT_EQ(values.size(), 6U);
}

TEST_F(Quantities, OfAMovingBedAreToldAgainstTheBedAtTheStart) {
  columns[Field::bed_level] = {10.5, 19.0, 30.0};
  columns[Field::sediment_thickness] = columns[Field::bed_load_x] = columns[Field::bed_load_y] =
      std::vector<double>(3);
  const auto values = values_of(fields::dataset_quantities(true, false));
  EXPECT_EQ(values.at("bed"), (std::vector<double>{10.5, 19.0, 30.0}));
  EXPECT_EQ(values.at("bed_change"), (std::vector<double>{0.5, -1.0, 0.0}));
  EXPECT_EQ(values.at("level")[0], 12.5);
}

TEST_F(Quantities, OfTheWholeRunAreTheLargestDepthsAndOverAFixedBedTheirLevels) {
  const auto values = values_of(fields::dataset_largest_depths(false));
  EXPECT_EQ(values.at("max_depth"), (std::vector<double>{2.5, 0.001, 0.0}));
  EXPECT_EQ(values.at("max_level")[0], 12.5);
  EXPECT_TRUE(std::isnan(values.at("max_level")[1]));
  EXPECT_EQ(values_of(fields::dataset_largest_depths(true)).count("max_level"), 0U);
}

TEST_F(Quantities, OfTheMaximaOfTheFlowAreTheirColumns) {
  const auto values = values_of(fields::dataset_maxima_of_flow());
  EXPECT_EQ(values.at("peak_depth")[0], 2.75);
  EXPECT_EQ(values.at("hazard")[0], 7.0);
  EXPECT_EQ(values.at("peak_discharge")[0], 7.0);
  EXPECT_EQ(values.size(), 8U);
}

TEST_F(Quantities, InSinglePrecisionAreTheRoundedOnes) {
  std::vector<float> level;
  columns[Field::depth][0] = 0.1;
  fields::evaluate(fields::dataset_quantities(false, false)[1], {columns, bed, 0.01}, level);
  EXPECT_EQ(level[0], static_cast<float>(10.0 + 0.1));
}

}  // namespace
