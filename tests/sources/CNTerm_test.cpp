#include "sources/CNTerm.hpp"

#include <gtest/gtest.h>

namespace {

CNTerm silent_term(double a) {
  testing::internal::CaptureStdout();
  const CNTerm term(5, 80.0, a, 0.5);
  testing::internal::GetCapturedStdout();
  return term;
}

TEST(CNTerm, AnnouncesItself) {
  testing::internal::CaptureStdout();
  const CNTerm term(5, 80.0, 0.2, 0.5);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "CNTerm created with ID: 5, CN: 80\n");
  EXPECT_EQ(term.getID(), 5);
}

TEST(CNTerm, RetentionFollowsTheCurveNumber) {
  const CNTerm term = silent_term(0.2);
  EXPECT_DOUBLE_EQ(term.potential_retention(), 63.5);  // 25400 / 80 - 254
  EXPECT_DOUBLE_EQ(term.initial_abstraction(), 12.7);
}

TEST(CNTerm, HasNoEffect) {
  CNTerm term = silent_term(0.2);
  HydraulicVariableSWE source, state;
  source.set_values(1.0, 2.0, 3.0);
  state.set_values(4.0, 5.0, 6.0);
  ParamCell param;
  param.infiltration_step = 0.5;
  term.compute_source_term(100.0, source, state, param);
  EXPECT_EQ(source.h, 1.0);
  EXPECT_EQ(source.qx, 2.0);
  EXPECT_EQ(state.h, 4.0);
  EXPECT_EQ(param.infiltration_step, 0.5);
  EXPECT_EQ(param.infiltrated_depth, 0.0);
}

}  // namespace
