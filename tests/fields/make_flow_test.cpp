#include "fields/make_flow.hpp"

#include <gtest/gtest.h>

#include "support/NoThreads.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"

namespace {

class MakeFlow : public testing::Test {
 protected:
  MakeFlow() {
    support::fill(*model, [](double, double) { return 1.0; });
  }
  ~MakeFlow() override { unsetenv("QUILLMERE_ENGINE"); }

  support::RunGlobals globals{1e-3};
  std::unique_ptr<SWE> model = support::build_rectangle({4, 4, 4.0, 4.0});
};

TEST_F(MakeFlow, TakesThePathThatTheEnvironmentAsksFor) {
  EXPECT_STREQ(fields::make_flow(*model)->execution_path().name, "tables");
  setenv("QUILLMERE_ENGINE", "objects", 1);
  EXPECT_STREQ(fields::make_flow(*model)->execution_path().name, "objects");
}

TEST_F(MakeFlow, SaysThatTheSystemGivesFewerThreads) {
  testing::internal::CaptureStderr();
  const support::NoThreads none;
  EXPECT_EQ(fields::make_flow(*model, 3)->execution_path().threads, 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Warning: the system gives 1 of 3 threads: the run is slower, its results stay the "
            "same.\n");
}

}  // namespace
