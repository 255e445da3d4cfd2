#include "report/StepCourse.hpp"

#include <gtest/gtest.h>

namespace {

constexpr auto most = static_cast<int>(StepCourse::most_spans);

/// Steps of 1 s, but for one of each ten, which is longer.
double step(int i) { return i % 10 == 7 ? 2.0 : 1.0; }

StepCourse course_of(int steps) {
  StepCourse course;
  for (int i = 0; i < steps; ++i) course.add(i, step(i));
  return course;
}

TEST(StepCourse, HasEveryStepOfAShortRun) {
  EXPECT_TRUE(StepCourse().spans().empty());
  const StepCourse course = course_of(most);
  ASSERT_EQ(course.spans().size(), StepCourse::most_spans);
  for (int i = 0; i < most; ++i) {
    const StepCourse::Span& span = course.spans()[static_cast<std::size_t>(i)];
    EXPECT_EQ(span.begin, i);
    EXPECT_EQ(span.smallest, step(i));
    EXPECT_EQ(span.largest, step(i));
  }
}

TEST(StepCourse, HasSmallestAndLargestStepOfEverySpanOfALongOne) {
  const StepCourse course = course_of(5 * most + 3);
  ASSERT_EQ(course.spans().size(), static_cast<std::size_t>(5 * most / 8 + 1));
  for (std::size_t k = 0; k < course.spans().size(); ++k) {
    const StepCourse::Span& span = course.spans()[k];
    const int begin = 8 * static_cast<int>(k), end = std::min(begin + 8, 5 * most + 3);
    double smallest = step(begin), largest = step(begin);
    for (int i = begin; i < end; ++i) {
      smallest = std::min(smallest, step(i));
      largest = std::max(largest, step(i));
    }
    EXPECT_EQ(span.begin, begin);
    EXPECT_EQ(span.smallest, smallest);
    EXPECT_EQ(span.largest, largest);
  }
}

}  // namespace
