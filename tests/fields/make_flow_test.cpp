#include "fields/make_flow.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "support/NoThreads.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"
#include "support/polygon_mesh.hpp"

namespace {

using fields::Path;

/// A still pond in one cell of many sides.
cases::Case pond(int sides) {
  cases::Case contents;
  contents.mesh = support::polygon_mesh(sides);
  contents.fields.level = {1.0};
  contents.fields.qx = contents.fields.qy = {0.0};
  contents.t_end = 1.0;
  contents.zero_depth = 1e-3;
  return contents;
}

class MakeFlow : public testing::Test {
 protected:
  std::string path_of(const cases::Case& contents, Path path) {
    return fields::make_flow(contents, told, path, 1)->execution_path().name;
  }

  const support::RunGlobals globals{1e-3};  // objects set them
  support::Told told;
};

}  // namespace

TEST_F(MakeFlow, TakesTheTablesUnlessItIsAskedForObjects) {
  EXPECT_EQ(path_of(pond(6), Path::best), "tables");
  EXPECT_EQ(path_of(pond(6), Path::tables), "tables");
  EXPECT_EQ(path_of(pond(6), Path::objects), "objects");
}

TEST_F(MakeFlow, ACellOfMoreEdgesThanTheTablesNumberRunsOnTheObjects) {
  EXPECT_EQ(path_of(pond(65000), Path::best), "tables");
  EXPECT_EQ(path_of(pond(66000), Path::best), "objects");
  EXPECT_THROW(path_of(pond(66000), Path::tables), std::runtime_error);
}

TEST_F(MakeFlow, BothPathsKnowTheScalesOfTheirCase) {
  const cases::Case contents = pond(6);
  const auto tables = fields::make_flow(contents, told, Path::tables, 1);
  const auto objects = fields::make_flow(contents, told, Path::objects, 1);
  EXPECT_EQ(tables->scales().h0, 1.0);
  EXPECT_EQ(tables->scales().char_length_min, objects->scales().char_length_min);
  EXPECT_EQ(tables->stable_step(), objects->stable_step());
}

TEST_F(MakeFlow, SaysThatTheSystemGivesFewerThreads) {
  const support::NoThreads none;
  const cases::Case contents = pond(6);
  EXPECT_EQ(fields::make_flow(contents, told, Path::best, 3)->execution_path().threads, 1);
  EXPECT_EQ(told.warnings, (std::vector<std::string>{"the system gives 1 of 3 threads: the run is "
                                                     "slower, its results stay the same."}));
}

TEST(PathOfEnvironment, IsNamedByAVariable) {
  unsetenv("QUILLMERE_ENGINE");
  EXPECT_EQ(fields::path_of_environment(), Path::best);
  setenv("QUILLMERE_ENGINE", "objects", 1);
  EXPECT_EQ(fields::path_of_environment(), Path::objects);
  setenv("QUILLMERE_ENGINE", "tables", 1);
  EXPECT_EQ(fields::path_of_environment(), Path::tables);
  setenv("QUILLMERE_ENGINE", "fables", 1);
  EXPECT_THROW(fields::path_of_environment(), std::runtime_error);
  unsetenv("QUILLMERE_ENGINE");
}
