#include "fields/make_flow.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "fields/HllFlow.hpp"
#include "support/NoThreads.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"
#include "support/TriangleGrid.hpp"
#include "support/case_of.hpp"
#include "support/polygon_mesh.hpp"

namespace {

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

/// Of so many cells that it is worth three threads.
cases::Case basin() { return support::case_of(*support::build_rectangle({60, 30, 60.0, 30.0})); }

class MakeFlow : public testing::Test {
 protected:
  std::string path_of(const cases::Case& contents, const std::string& path) {
    return fields::make_flow(contents, told, {.path = path})->execution_path().name;
  }
  /// That of a request for an emulated device.
  fields::ExecutionPath path_on_device(const cases::Case& contents) {
    return fields::make_flow(contents, told, {.path = "device", .device = "emulated"})
        ->execution_path();
  }

  const support::RunGlobals globals{1e-3};  // objects set them
  support::Told told;
};

}  // namespace

TEST_F(MakeFlow, TakesTheTablesUnlessItIsAskedForObjects) {
  EXPECT_EQ(path_of(pond(6), ""), "tables");
  EXPECT_EQ(path_of(pond(6), "tables"), "tables");
  EXPECT_EQ(path_of(pond(6), "objects"), "objects");
}

TEST_F(MakeFlow, ACellOfMoreEdgesThanTheTablesNumberRunsOnTheObjects) {
  EXPECT_EQ(path_of(pond(65000), ""), "tables");
  EXPECT_EQ(path_of(pond(66000), ""), "objects");
  EXPECT_THROW(path_of(pond(66000), "tables"), std::runtime_error);
}

TEST_F(MakeFlow, TakesADeviceWhereItIsAskedForOne) {
  EXPECT_STREQ(path_on_device(pond(6)).name, "device");
  EXPECT_EQ(path_on_device(pond(6)).instruction_set, "emulated");
  EXPECT_THROW(path_of(pond(6), "device"), std::runtime_error);  // of which there is none
  EXPECT_THROW(path_on_device(pond(66000)), std::runtime_error);
  cases::Case contents = support::TriangleGrid{}.make();
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    contents.scheme = scheme;
    EXPECT_STREQ(path_on_device(contents).name, "device");
  }
}

TEST_F(MakeFlow, ThePositiveSchemesHaveAWalkInPlaceOfTheObjects) {
  cases::Case contents = support::TriangleGrid{}.make();
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    contents.scheme = scheme;
    EXPECT_EQ(path_of(contents, ""), "tables");
    const auto walk = fields::make_flow(contents, told, {.path = "objects"});
    EXPECT_NE(dynamic_cast<const fields::HllFlow*>(walk.get()), nullptr);
    EXPECT_EQ(walk->scales().h0, 1.0);
    contents.rain = {{7, 1, {0.0}, {-1e-3}}};
    EXPECT_THROW(path_of(contents, ""), std::runtime_error);
    EXPECT_THROW(path_of(contents, "objects"), std::runtime_error);
    contents.rain.clear();
  }
}

TEST_F(MakeFlow, BothPathsKnowTheScalesOfTheirCase) {
  const cases::Case contents = pond(6);
  const auto tables = fields::make_flow(contents, told, {.path = "tables"});
  const auto objects = fields::make_flow(contents, told, {.path = "objects"});
  EXPECT_EQ(tables->scales().h0, 1.0);
  EXPECT_EQ(tables->scales().char_length_min, objects->scales().char_length_min);
  EXPECT_EQ(tables->stable_step(0.0), objects->stable_step(0.0));
}

TEST_F(MakeFlow, TakesAsManyThreadsAsItMayUnlessTheMeshIsSmall) {
  const cases::Case small = pond(6), large = basin();
  EXPECT_EQ(fields::make_flow(small, told, {.most_threads = 3})->execution_path().threads, 1);
  EXPECT_EQ(fields::make_flow(large, told, {.most_threads = 3})->execution_path().threads, 3);
}

TEST_F(MakeFlow, SaysThatTheSystemGivesFewerThreads) {
  const support::NoThreads none;
  const cases::Case contents = basin();
  EXPECT_EQ(fields::make_flow(contents, told, {.most_threads = 3})->execution_path().threads, 1);
  EXPECT_EQ(told.warnings, (std::vector<std::string>{"the system gives 1 of 3 threads: the run is "
                                                     "slower, its results stay the same."}));
}

TEST_F(MakeFlow, RefusesAPathAndAnInstructionSetThatThereAreNot) {
  EXPECT_THROW(path_of(pond(6), "fables"), std::runtime_error);
  EXPECT_THROW(fields::make_flow(pond(6), told, {.instruction_set = "abacus"}), std::runtime_error);
}
