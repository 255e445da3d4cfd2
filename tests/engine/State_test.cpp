// A state that is taken from an engine and put into another one gives the same steps from there.
#include "engine/State.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "engine/Engine.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/SedimentParameters.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/case_of.hpp"

namespace {

constexpr int patch_size = 64;
constexpr double wave_arrival_depth = 0.45;  // m; the wave reaches it in some cells

class EngineState : public testing::Test {
 protected:
  /// A wave in a basin with a series, friction, rain and, over rock, a soil.
  template <class Model>
  cases::Case basin() {
    constexpr bool has_bed = std::is_same_v<Model, SWE_Exner>;
    support::Rectangle rectangle{24, 12, 12.0, 6.0};
    if (!has_bed) {
      rectangle.west = {edge_code::hydrograph, 0.0, folder.write("q.txt", "3 0 -0.1 0.2 -0.6 9 0")};
    }
    const auto model = support::build_rectangle<Model>(rectangle);
    for (const auto& cell : model->cells) {
      if (has_bed) cell->set_hs(0.1);
      cell->set_friction(0.03);
      cell->add_source_term(&model->friction_terms.emplace_back(0.03));
      cell->add_source_term(&rain);
      if (!has_bed) cell->add_source_term(&soil);
    }
    support::fill(*model, [](double x, double) { return x < 4.0 ? 1.0 : 0.4; });
    return support::case_of(*model);
  }

  static double steps(engine::Engine& engine, int count, double t, double next) {
    for (int i = 0; i < count; ++i) {
      next = 0.4 * engine.advance({t, 0.0, 100.0, next});
      t += next;
    }
    return next;
  }

  static void expect_same(const engine::State& a, const engine::State& b) {
    for (const auto column : engine::columns_of_flow) {
      const std::vector<double>&x = a.*column, &y = b.*column;
      ASSERT_EQ(x.size(), y.size());
      EXPECT_TRUE(x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) == 0);
    }
  }

  template <class Model>
  void expect_the_same_steps_from(int steps_before) {
    const cases::Case contents = basin<Model>();
    engine::Engine one(contents, 2, patch_size);
    one.keep_maxima(wave_arrival_depth);
    double next = 0.4 * one.stable_step(0.0), t = 0.0;
    for (int i = 0; i < steps_before; ++i) {
      next = 0.4 * one.advance({t, 0.0, 100.0, next});
      t += next;
    }
    const engine::State saved = one.state();
    steps(one, 30, t, next);
    const engine::State later = one.state();
    EXPECT_NE(later.h, saved.h);

    engine::Engine other(contents, 3, 2 * patch_size);
    other.keep_maxima(wave_arrival_depth);
    other.set_state(saved);
    steps(other, 30, t, next);
    expect_same(other.state(), later);

    one.set_state(saved);  // back in time
    expect_same(one.state(), saved);
    steps(one, 30, t, next);
    expect_same(one.state(), later);
  }

  const support::RunGlobals globals{1e-3};
  const support::SedimentParameters sand{0.8e-3, 2.65, 0.42};
  support::TemporaryFolder folder;
  RainTerm rain = [] {
    RainTerm term(1, 2, 1);
    term.times = {0.0, 0.3};
    term.intensities = {1e-3, 4e-3};
    return term;
  }();
  HortonTerm soil{1, 1e-3, 1e-4, 20.0, 0.02, 1e-3};
};

}  // namespace

TEST_F(EngineState, OfTheStartGivesTheSameSteps) {
  expect_the_same_steps_from<SWE>(0);
  expect_the_same_steps_from<SWE_Exner>(0);
}

TEST_F(EngineState, OfLaterTimesGivesTheSameSteps) {
  expect_the_same_steps_from<SWE>(25);
  expect_the_same_steps_from<SWE_Exner>(25);
}

TEST_F(EngineState, WithoutMaximaIsRefusedWhereTheyAreKept) {
  const cases::Case contents = basin<SWE>();
  engine::Engine keeps(contents, 1, patch_size), keeps_none(contents, 1, patch_size);
  keeps.keep_maxima(wave_arrival_depth);
  EXPECT_THROW(keeps.set_state(keeps_none.state()), std::invalid_argument);
  EXPECT_EQ(keeps_none.state().peak_depth, std::vector<double>());
  keeps_none.set_state(keeps.state());
  steps(keeps_none, 3, 0.0, 1e-3);
}
