// What several ranks see of a flow is what one sees, to the last bit.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "fields/make_flow.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/as_first_of.hpp"
#include "ranks/kept.hpp"
#include "support/Told.hpp"
#include "utils/bytes.hpp"

using namespace test_ranks;

namespace {

using fields::Field;
using fields::Look;

class LooksOfRanks : public PartsOfCourse {
 protected:
  using Looked = std::vector<utils::Bytes>;

  static utils::Bytes bytes_of(const fields::Seen& seen) {
    utils::Bytes bytes;
    utils::put_into(bytes, seen);
    return bytes;
  }

  /// Every kind of look, at states between a few steps; with what was kept of the looks.
  static Looked look_at(fields::Flow& flow, const cases::Case& contents) {
    flow.watch();
    const auto looks = flow.looks(contents);
    Looked looked;
    double dt = 1e-3;
    for (int step = 0; step < 12; ++step) {
      for (const Look::Kind kind :
           {Look::Kind::water, Look::Kind::most_rapid, Look::Kind::states, Look::Kind::nearest_lost,
            Look::Kind::bounds, Look::Kind::volumes}) {
        looked.push_back(bytes_of(looks->see({.kind = kind, .point = {3.0, 4.0}})));
      }
      looked.push_back(bytes_of(looks->see({Look::Kind::column, Field::depth})));
      looked.push_back(bytes_of(looks->see({Look::Kind::column, Field::bed_load_x, 2})));
      fields::SavedCells cells = cells_of(flow, {looks.get(), true});
      utils::put_into(looked.emplace_back(), cells.infiltrated);
      if (step == 6) {  // the soils have given out all that they had
        for (double& depth : cells.infiltrated) depth += 1.0;
        const Kept kept = kept_of(cells);
        utils::MemorySource source(kept.rows);
        flow.load_books(kept.flow, true, *looks, source);
      }
      flow.advance({step * dt, 0.0, t_end, dt});
      looks->add_step(dt);
    }
    return looked;
  }

  void expect_same(
      const cases::Case& contents,
      const std::function<void(engine::State&)>& change = [](engine::State&) {}) {
    const auto looked_on = [&](const fields::FlowRequest& request) {
      const auto flow = fields::make_flow(contents, told_, request);
      engine::State state = state_of(*flow);
      change(state);
      load(*flow, state);
      return look_at(*flow, contents);
    };
    const Looked expected = looked_on({.most_threads = 1});
    for (const int count : {2, 3, 5, 7}) {
      as_first_of({count}, [&](ranks::Group& group) {
        fields::FlowRequest request{.most_threads = 1};
        request.ranks.group = &group;
        const Looked looked = looked_on(request);
        ASSERT_EQ(looked.size(), expected.size());
        for (std::size_t k = 0; k < looked.size(); ++k) {
          EXPECT_TRUE(looked[k] == expected[k]) << "look " << k << " of " << count << " ranks";
        }
      });
    }
    EXPECT_FALSE(expected.front() == expected[63]);  // there was something to see
  }

  support::Told told_;
};

}  // namespace

TEST_F(LooksOfRanks, SeeWaterSoilsAndBoundariesAlike) { expect_same(basin({})); }

TEST_F(LooksOfRanks, SeeSedimentsAlike) { expect_same(basin({.sediments = true, .soils = false})); }

TEST_F(LooksOfRanks, SeeDepthsBelowZeroFilmsAndLostStatesAlike) {
  expect_same(basin({}), [](engine::State& state) {
    for (std::size_t cell = 5; cell < state.h.size(); cell += 40) {
      state.h[cell] = cell % 80 == 5 ? -1e-3 * static_cast<double>(cell) : 2e-3;
      state.qx[cell] = 0.5;
    }
    for (const std::size_t cell : {100, 101, 650}) state.qy[cell] = NAN;
  });
}
