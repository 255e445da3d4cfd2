#include "fields/ColumnSurvey.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using fields::ColumnSurvey;

TEST(ColumnSurvey, TakesRoundingForZero) {
  ColumnSurvey survey;
  survey.add(0, -1e-9, 1.0);
  survey.add(1, 2.0, 0.5);
  EXPECT_EQ(survey.below_zero, 0);
  EXPECT_EQ(survey.share(), 0.0);
  EXPECT_EQ(survey.held.value(), 1.0);
  survey.add(2, -1e-3, 2.0);
  survey.add(3, -2e-3, 2.0);
  EXPECT_EQ(survey.below_zero, 2);
  EXPECT_DOUBLE_EQ(survey.deficit.value(), 6e-3);
  EXPECT_DOUBLE_EQ(survey.share(), 6e-3 / 1.006);
  EXPECT_EQ(survey.lowest, -2e-3);
  EXPECT_EQ(survey.lowest_cell, 3);
}

TEST(ColumnSurvey, CountsWhatIsNoNumberAndKeepsItOutOfTheSums) {
  ColumnSurvey survey;
  survey.add(4, std::nan(""), 1.0);
  survey.add(5, -HUGE_VAL, 1.0);
  EXPECT_EQ(survey.not_finite, 2);
  EXPECT_EQ(survey.not_finite_cell, 4);
  EXPECT_EQ(survey.below_zero, 0);
  EXPECT_EQ(survey.deficit.value(), 0.0);
}

}  // namespace
