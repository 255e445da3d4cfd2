// The flow of several ranks as rank 0 has it: what concerns them all, and how it begins.
#include "fields/RanksFlow.hpp"

#include <atomic>

#include "fields/Clock.hpp"
#include "fields/make_flow.hpp"
#include "ranks/CountingGroup.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/as_first_of.hpp"
#include "ranks/kept.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"
#include "support/polygon_mesh.hpp"

using namespace test_ranks;

namespace {

class RanksFlow : public PartsOfCourse {
 protected:
  fields::FlowRequest on(ranks::Group& group) {
    fields::FlowRequest request{.most_threads = 1};
    request.ranks.group = &group;
    request.ranks.on_stop = [this] { ++stops_; };
    return request;
  }

  /// Adds a triangle between walls, beside everything else.
  static void add_island(cases::Mesh& mesh) {
    const Number first = mesh.n_nodes(), cell = mesh.n_cells();
    for (const physics::PlanPoint point : {physics::PlanPoint{5.0, 0.0}, {6.0, 0.0}, {5.0, 1.0}}) {
      mesh.x.push_back(point.x);
      mesh.y.push_back(point.y);
      mesh.z.push_back(0.0);
    }
    const Number nodes[] = {first, first + 1, first + 2};
    mesh.add_cell(nodes);
    for (const int side : {0, 1, 2}) {
      mesh.boundaries.push_back({mesh.n_edges(), edge_code::wall, 0.0, -1});
      mesh.left.push_back(cell);
      mesh.right.push_back(-1);
      mesh.node1.push_back(nodes[side]);
      mesh.node2.push_back(nodes[(side + 1) % 3]);
    }
  }

  template <class Value>
  static utils::Bytes bytes_of(const Value& value) {
    utils::Bytes bytes;
    utils::put_into(bytes, value);
    return bytes;
  }

  support::Told told_;
  int stops_ = 0;
};

}  // namespace

TEST_F(RanksFlow, TellsOnceThatTheSystemIsNotHyperbolicWhereverThatIs) {
  const cases::Case contents = basin({.sediments = true});
  const auto alone = fields::make_flow(contents, told_);
  const engine::State state = state_of(*alone);
  for (const std::size_t cell : {20, 300, 700}) {
    engine::State odd = state;
    odd.h[cell] = odd.eta[cell] = 0.5;
    odd.dqs_dh[cell] = 1e3;
    told_.warnings.clear();
    const auto reference = fields::make_flow(contents, told_);
    load(*reference, odd);
    reference->advance({0.0, 0.0, t_end, 1e-4});
    const std::vector<std::string> expected = told_.warnings;
    ASSERT_EQ(expected.size(), 1U);
    for (const std::string path : {"tables", "device"}) {
      as_first_of({3}, [&](ranks::Group& group) {
        told_.warnings.clear();
        fields::FlowRequest request = on(group);
        request.path = path;
        request.device = "emulated";
        const auto flow = fields::make_flow(contents, told_, request);
        load(*flow, odd);
        for (int step = 0; step < 3; ++step) flow->advance({0.0, 0.0, t_end, 1e-4});
        EXPECT_EQ(told_.warnings, expected);
        EXPECT_EQ(flow->execution_path().name, path);
        EXPECT_EQ(flow->execution_path().ranks, 3);
        const std::string what = flow->execution_path().instruction_set;
        EXPECT_EQ(flow->execution_path().ranks_run_on, std::vector<std::string>(3, what));
      });
    }
  }
}

TEST_F(RanksFlow, HearsAfterAStepThatAnotherRankWasAskedToEnd) {
  const cases::Case contents = basin({});
  std::atomic<bool> is_asked = false;
  as_first_of({3, [&] { return is_asked.load(); }}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    flow->advance({0.0, 0.0, t_end, 1e-4});
    EXPECT_EQ(stops_, 0);
    is_asked = true;
    flow->advance({0.0, 0.0, t_end, 1e-4});
    EXPECT_EQ(stops_, 1);
  });
}

TEST_F(RanksFlow, NeedsNoOrdersForStepsWhileItIsLeftAlone) {
  constexpr int steps = 20;
  for (const cases::Scheme scheme : {cases::Scheme::lhllc, cases::Scheme::hll2}) {
    cases::Case contents = basin({});
    contents.scheme = scheme;
    const auto alone = fields::make_flow(contents, told_);
    std::vector<fields::Clock> expected = {fields::clock_at_start(contents, *alone)};
    for (int step = 0; step < steps; ++step) {
      expected.push_back(expected.back());
      fields::advance(*alone, contents, expected.back());
    }
    const double pause = 0.5 * (expected[at(steps - 1)].t + expected[at(steps)].t);
    Counts counts;
    const auto counted = [&](std::unique_ptr<ranks::Group> group) {
      return std::make_unique<CountingGroup>(std::move(group), counts);
    };
    as_first_of({.count = 3, .changed = counted}, [&](ranks::Group& group) {
      const auto flow = fields::make_flow(contents, told_, on(group));
      fields::Clock clock = fields::clock_at_start(contents, *flow);
      counts.reset();
      for (int step = 1; step <= steps; ++step) {
        flow->leave_alone_until(pause);
        fields::advance(*flow, contents, clock);
        EXPECT_EQ(clock.t, expected[at(step)].t) << step;
        EXPECT_EQ(clock.dt, expected[at(step)].dt) << step;
        EXPECT_EQ(flow->takes_questions(), step == steps) << step;
      }
      EXPECT_EQ(counts.orders, 3);  // to think of moving cells, where cells are, and to go
      EXPECT_TRUE(have_same_bits(state_of(*flow), state_of(*alone)));
    });
  }
}

TEST_F(RanksFlow, TellsWhatAReportNotesWithoutOrdersOrReductionsForIt) {
  constexpr int steps = 40;
  for (const cases::Scheme scheme : {cases::Scheme::lhllc, cases::Scheme::hll2}) {
    cases::Case contents = basin({});
    contents.scheme = scheme;
    const std::vector<int> owners = ranks::owners_of(ranks::cut_along_curve(contents.mesh, 3));
    Counts counts;
    std::vector<long> orders, reductions;
    int told = 0;  // states of cells of other ranks
    const auto counted = [&](std::unique_ptr<ranks::Group> group) {
      return std::make_unique<CountingGroup>(std::move(group), counts);
    };
    as_first_of({.count = 3, .changed = counted}, [&](ranks::Group& group) {
      for (const bool is_watched : {false, true}) {
        fields::FlowRequest request = on(group);
        request.ranks.are_balanced = false;
        const auto alone = fields::make_flow(contents, told_);
        const auto flow = fields::make_flow(contents, told_, request);
        if (is_watched) {
          alone->watch();
          flow->watch();
        }
        fields::Clock expected = fields::clock_at_start(contents, *alone);
        fields::Clock clock = fields::clock_at_start(contents, *flow);
        physics::StepNotes before = is_watched ? flow->notes() : physics::StepNotes{};
        const auto expect_same_state = [&](int cell) {
          EXPECT_EQ(bytes_of(flow->state(cell)), bytes_of(alone->state(cell)));
          if (owners[at(cell)] > 0) ++told;
        };
        counts.reset();
        for (int step = 0; step < steps; ++step) {
          flow->leave_alone_until(HUGE_VAL);
          fields::advance(*flow, contents, clock);
          fields::advance(*alone, contents, expected);
          EXPECT_EQ(clock.t, expected.t);
          EXPECT_FALSE(flow->takes_questions());
          if (!is_watched) continue;
          const physics::StepNotes notes = flow->notes();
          EXPECT_EQ(bytes_of(notes), bytes_of(alone->notes()));
          if (notes.limiting_cell >= 0) expect_same_state(notes.limiting_cell);
          for (const auto record :
               {&physics::StepNotes::speed_squared, &physics::StepNotes::speed_squared_per_depth}) {
            const bool is_new = (notes.*record).value > (before.*record).value;
            if (is_new) expect_same_state((notes.*record).cell);
          }
          before = notes;
        }
        orders.push_back(counts.orders);
        reductions.push_back(counts.reductions);
      }
    });
    EXPECT_EQ(orders, (std::vector<long>{1, 1}));
    EXPECT_EQ(reductions[0], reductions[1]);
    EXPECT_GT(told, steps / 2);
  }
}

TEST_F(RanksFlow, TakesQuestionsOnceAStateOfWhichNotesAreTakenIsLost) {
  cases::Case contents = basin({.soils = false});
  for (const cases::Boundary& boundary : contents.mesh.boundaries) {
    if (boundary.code != edge_code::wall) continue;  // an edge without a length
    contents.mesh.node2[at(boundary.edge)] = contents.mesh.node1[at(boundary.edge)];
    break;
  }
  for (const bool is_watched : {true, false}) {
    as_first_of({3}, [&](ranks::Group& group) {
      const auto flow = fields::make_flow(contents, told_, on(group));
      if (is_watched) flow->watch();
      fields::Clock clock = fields::clock_at_start(contents, *flow);
      for (const bool is_first : {true, false}) {
        flow->leave_alone_until(HUGE_VAL);
        fields::advance(*flow, contents, clock);
        EXPECT_EQ(flow->takes_questions(), is_watched && is_first);
        if (is_watched && is_first) {
          EXPECT_EQ(flow->notes().not_finite, flow->looks(contents)->survey().not_finite);
          EXPECT_GT(flow->notes().not_finite, 0);
        }
      }
    });
  }
}

TEST_F(RanksFlow, RefusesQuestionsWhileItIsLeftAlone) {
  const cases::Case contents = basin({});
  as_first_of({3}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    fields::Clock clock = fields::clock_at_start(contents, *flow);
    flow->leave_alone_until(HUGE_VAL);
    fields::advance(*flow, contents, clock);
    ASSERT_FALSE(flow->takes_questions());
    EXPECT_THROW(flow->looks(contents)->survey(), std::logic_error);
    EXPECT_THROW(flow->advance({clock.t, 0.0, t_end, 0.5 * clock.dt}), std::logic_error);
    fields::advance(*flow, contents, clock);  // nobody left it alone for longer
    EXPECT_TRUE(flow->takes_questions());
    EXPECT_GT(flow->looks(contents)->survey().wet_cells, 0);
  });
}

TEST_F(RanksFlow, EndsInTheMiddleOfStepsForWhichItIsLeftAlone) {
  const cases::Case contents = basin({});
  as_first_of({3}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    fields::Clock clock = fields::clock_at_start(contents, *flow);
    flow->leave_alone_until(HUGE_VAL);
    fields::advance(*flow, contents, clock);
    EXPECT_FALSE(flow->takes_questions());
  });  // the others are ready for the end of the service
}

TEST_F(RanksFlow, TakesQuestionsOnceAnotherRankWasAskedToEnd) {
  const cases::Case contents = basin({});
  std::atomic<bool> is_asked = false;
  as_first_of({3, [&] { return is_asked.load(); }}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    fields::Clock clock = fields::clock_at_start(contents, *flow);
    is_asked = true;
    do {  // the step that was under way may not know of it
      flow->leave_alone_until(HUGE_VAL);
      fields::advance(*flow, contents, clock);
    } while (!flow->takes_questions());
    EXPECT_EQ(stops_, 1);
    EXPECT_LE(clock.steps, 2);
  });
}

TEST_F(RanksFlow, TakesQuestionsOnceItsStepsHaveCollapsed) {
  cases::Case contents = basin({});
  contents.cfl = 1e-9;
  as_first_of({2}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    fields::Clock clock = fields::clock_at_start(contents, *flow);
    ASSERT_TRUE(clock.has_collapsed());
    flow->leave_alone_until(HUGE_VAL);
    fields::advance(*flow, contents, clock);
    EXPECT_TRUE(flow->takes_questions());
  });
}

TEST_F(RanksFlow, SurveysAllCells) {
  cases::Case contents = basin({.soils = false, .mostly_dry = true});
  for (const bool is_lost : {false, true}) {
    if (is_lost) contents.fields.qx[500] = HUGE_VAL;
    const fields::FlowSurvey expected =
        fields::make_flow(contents, told_)->looks(contents)->survey();
    as_first_of({3}, [&](ranks::Group& group) {
      const fields::FlowSurvey survey =
          fields::make_flow(contents, told_, on(group))->looks(contents)->survey();
      EXPECT_EQ(survey.wet_cells, expected.wet_cells);
      EXPECT_EQ(survey.largest_speed, expected.largest_speed);
      EXPECT_EQ(survey.not_finite, expected.not_finite);
      EXPECT_EQ(survey.a_cell_not_finite, expected.a_cell_not_finite);
    });
  }
}

TEST_F(RanksFlow, RefusesWhatTheSchemeCannotTakeAsOneRankDoes) {
  cases::Case contents = basin({});
  contents.scheme = cases::Scheme::hll2;
  for (const Number node : contents.mesh.nodes_of(500)) contents.mesh.x[at(node)] = 7.0;
  const auto refusal = [&](const fields::FlowRequest& request) {
    try {
      fields::make_flow(contents, told_, request);
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("none");
  };
  const std::string alone = refusal({.most_threads = 1});
  EXPECT_NE(alone.find("which has no area"), std::string::npos) << alone;
  as_first_of({3}, [&](ranks::Group& group) { EXPECT_EQ(refusal(on(group)), alone); });
}

TEST_F(RanksFlow, RunsOnTheObjectsWhereTheTablesOfAnyRankHaveNoRoom) {
  cases::Case contents;
  contents.mesh = support::polygon_mesh(66000);
  add_island(contents.mesh);
  contents.zero_depth = 1e-3;
  contents.t_end = 1.0;
  contents.fields.level = {1.0, 1.0};
  contents.fields.qx = contents.fields.qy = {0.0, 0.0};
  const support::RunGlobals globals(1e-3);  // objects set them
  as_first_of({2}, [&](ranks::Group& group) {
    const auto flow = fields::make_flow(contents, told_, on(group));
    EXPECT_EQ(flow->execution_path().name, std::string("objects"));
    EXPECT_EQ(flow->execution_path().ranks, 1);
  });
}

TEST_F(RanksFlow, SaysWhyARankCannotStart) {
  const cases::Case contents = basin({});
  as_first_of({3}, [&](ranks::Group& group) {
    fields::FlowRequest request = on(group);
    request.instruction_set = "abacus";
    std::string why_alone, why;
    try {
      fields::make_flow(contents, told_, {.instruction_set = "abacus"});
    } catch (const std::runtime_error& error) {
      why_alone = error.what();
    }
    try {
      fields::make_flow(contents, told_, request);
    } catch (const std::runtime_error& error) {
      why = error.what();
    }
    EXPECT_EQ(why, why_alone);
    EXPECT_NE(why, "");
    // They are ready for another one.
    EXPECT_EQ(fields::make_flow(contents, told_, on(group))->execution_path().ranks, 3);
  });
}
