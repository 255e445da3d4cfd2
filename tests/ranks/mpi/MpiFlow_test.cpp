// The flow of the processes of an MPI job, whose cells move from one to another.
#include <gtest/gtest.h>

#include <algorithm>

#include "fields/Clock.hpp"
#include "fields/RanksFlow.hpp"
#include "fields/make_flow.hpp"
#include "fields/serve.hpp"
#include "ranks/Curve.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/cuts_by_weight.hpp"
#include "ranks/kept.hpp"
#include "ranks/mpi/MpiGroup.hpp"
#include "support/Told.hpp"

namespace {

class MpiFlow : public test_ranks::PartsOfCourse {
 protected:
  /// Every second rank gets most of the cells, these or the others.
  static std::vector<ranks::Cells> uneven_cut(const cases::Mesh& mesh, int ranks, int which) {
    const ranks::Curve curve(mesh, 4);
    std::vector<double> weights;
    for (int k = 0; k < curve.patches(); ++k) {
      weights.push_back(k * ranks / curve.patches() % 2 == which ? 5.0 : 1.0);
    }
    return curve.runs(ranks::cuts_of(weights, ranks));
  }
};

}  // namespace

TEST_F(MpiFlow, KeepsItsBitsWhileCellsMove) {
  ranks::MpiGroup group;
  constexpr int end = 3;
  if (group.rank() > 0) {
    EXPECT_EQ(fields::serve(group, [] { return false; }), end);
    return;
  }
  for (const bool sediments : {false, true}) {
    const cases::Case contents = basin({.sediments = sediments});
    support::Told told;
    const auto alone = fields::make_flow(contents, told, {.most_threads = 1});
    fields::RanksFlow flow(contents, told, {.group = &group, .are_balanced = false}, 1, {});
    fields::Clock clock = fields::clock_at_start(contents, flow);
    fields::Clock clock_alone = fields::clock_at_start(contents, *alone);
    for (int step = 0; step < 60; ++step) {
      if (step % 10 == 5) flow.recut(uneven_cut(contents.mesh, group.size(), step / 10 % 2));
      if (step % 10 != 4) flow.leave_alone_until(HUGE_VAL);
      fields::advance(flow, contents, clock);
      fields::advance(*alone, contents, clock_alone);
      EXPECT_EQ(clock.t, clock_alone.t);
    }
    flow.leave_alone_until(-HUGE_VAL);
    fields::advance(flow, contents, clock);
    fields::advance(*alone, contents, clock_alone);
    EXPECT_EQ(flow.recuts(), 6);
    EXPECT_TRUE(have_same_bits(test_ranks::state_of(flow), test_ranks::state_of(*alone)));
  }
  fields::end_service(group, end);
}
