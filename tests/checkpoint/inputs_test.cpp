#include "checkpoint/inputs.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "support/basin.hpp"

namespace {

using Names = std::vector<std::string>;

class Inputs : public testing::Test {
 protected:
  static std::vector<checkpoint::Input> of(const cases::Case& contents,
                                           const std::string& version) {
    return checkpoint::inputs_of(contents, cases::input_sums_of(contents), version);
  }
  checkpoint::Changes after(const std::function<void(cases::Case&)>& change) const {
    cases::Case changed = contents;
    change(changed);
    return checkpoint::changes_between(of(contents, "1"), of(changed, "1"));
  }
  Names refused(const std::function<void(cases::Case&)>& change) const {
    EXPECT_EQ(after(change).allowed, Names{});
    return after(change).refused;
  }
  Names allowed(const std::function<void(cases::Case&)>& change) const {
    EXPECT_EQ(after(change).refused, Names{});
    return after(change).allowed;
  }

  support::TemporaryFolder folder;
  cases::Case contents = support::basin({.sediments = true}, folder);
};

}  // namespace

TEST_F(Inputs, OfTheSameCaseAreTheSame) {
  EXPECT_EQ(refused([](cases::Case&) {}), Names{});
  EXPECT_EQ(refused([](cases::Case& c) { c.series[0].file = "another name"; }), Names{});
}

TEST_F(Inputs, ThatMayNotChangeAreNamed) {
  const auto name_of = [&](const std::function<void(cases::Case&)>& change) {
    return refused(change);
  };
  EXPECT_EQ(name_of([](cases::Case& c) { c.has_sediments = false; }), Names{"the model"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.scheme = cases::Scheme::hll2; }),
            Names{"the flux scheme"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.t_start = -1.0; }), Names{"the start time"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.cfl = 0.7; }), Names{"the Courant number"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.zero_depth *= 2; }),
            Names{"the depth up to which a cell is dry"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.mesh.z[5] += 1e-9; }), Names{"the nodes of the mesh"});
  EXPECT_EQ(name_of([](cases::Case& c) { std::swap(c.mesh.cell_nodes[3], c.mesh.cell_nodes[4]); }),
            Names{"the cells of the mesh"});
  EXPECT_EQ(name_of([](cases::Case& c) { std::swap(c.mesh.node1[3], c.mesh.node2[3]); }),
            Names{"the edges of the mesh"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.mesh.boundaries.back().value += 0.1; }),
            Names{"the boundary conditions"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.fields.level[1] += 0.1; }),
            Names{"the initial conditions"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.fields.infiltrated[1] += 0.1; }),
            Names{"the initial conditions"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.fields.bed.assign(c.fields.level.size(), 0.0); }),
            Names{"the bed"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.fields.manning[1] = 0.5; }), Names{"the friction"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.fields.soil[2] = -1; }), Names{"the soils"});
  EXPECT_EQ(name_of([](cases::Case& c) {
              std::get<cases::HortonParameters>(c.soils[1].parameters).kr = 1e-3;
            }),
            Names{"the soils"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.fields.sediment[1] += 0.1; }),
            Names{"the initial sediments"});
  EXPECT_EQ(name_of([](cases::Case& c) { c.sediment.porosity = 0.3; }),
            Names{"the parameters of the sediments"});
  const checkpoint::Changes of_program =
      checkpoint::changes_between(of(contents, "1"), of(contents, "2"));
  EXPECT_EQ(of_program.refused, Names{"the version of the program"});
}

TEST_F(Inputs, ThatMayChangeAreNamedToo) {
  EXPECT_EQ(allowed([](cases::Case& c) { c.t_end += 1.0; }), Names{"the end time"});
  EXPECT_EQ(allowed([](cases::Case& c) { c.series[0].values[1] += 1.0; }),
            Names{"the boundary series"});
  EXPECT_EQ(allowed([](cases::Case& c) { c.rain[1].intensities[0] += 1.0; }), Names{"the rain"});
  EXPECT_EQ(allowed([](cases::Case& c) { c.fields.rain[4] = -1; }), Names{"the rain"});
}

TEST_F(Inputs, LetRainGoOnByItsIdentifier) {
  const std::vector<checkpoint::RainInput> before = checkpoint::rain_of(contents);
  const std::vector<physics::RainClock> clocks = {{1.0, 1, 0.5}, {2.0, 1, 1.0}};
  const auto clocks_now = [&](const cases::Case& now) {
    return checkpoint::rain_clocks_for(now, 2.5, before, clocks);
  };
  const auto is = [](const physics::RainClock& clock, double last, int interval, double burst) {
    return clock.last_update_time == last && clock.hyetogram_index == interval &&
           clock.rain_dt == burst;
  };
  EXPECT_TRUE(is(clocks_now(contents)[0], 1.0, 1, 0.5));
  EXPECT_TRUE(is(clocks_now(contents)[1], 2.0, 1, 1.0));

  cases::Case changed = contents;
  std::swap(changed.rain[0], changed.rain[1]);
  changed.rain[1].times = {0.0, 0.4, 0.8, 3.0};
  changed.rain[1].intensities = {0.0, 0.0, 1e-3, 0.0};
  changed.rain.push_back({9, 1, {0.0, 2.0}, {1e-3, 2e-3}});
  const auto now = clocks_now(changed);
  ASSERT_EQ(now.size(), 3U);
  EXPECT_TRUE(is(now[0], 2.0, 1, 1.0));
  EXPECT_TRUE(is(now[1], 1.0, 2, 1e20));  // from its last burst on
  EXPECT_TRUE(is(now[2], 2.5, 1, 1e20));  // from now on
}
