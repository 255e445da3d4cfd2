// A case of everything, its course on one engine, and how the parts that ranks compute compare.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "engine/Engine.hpp"
#include "ranks/cut_along_curve.hpp"
#include "ranks/share_of.hpp"
#include "ranks/uneven_parts.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/basin.hpp"

namespace test_ranks {

using cases::Number;
using engine::at;

inline constexpr double t_end = support::basin_t_end;
inline constexpr double courant = 0.4;
inline constexpr double arrival_depth = 0.3;  // m

using Options = support::BasinOptions;

/// States before every step and after the last one, the steps, and what passed the boundaries.
struct Course {
  std::vector<engine::State> states;
  std::vector<double> times, steps;
  std::vector<std::vector<engine::BoundaryInflow>> inflows;

  int count() const { return static_cast<int>(inflows.size()); }
};

class PartsOfCourse : public testing::Test {
 protected:
  cases::Case basin(const Options& options) {
    cases::Case contents = support::basin(options, folder_);
    contents.cfl = courant;
    return contents;
  }

  static Course run_alone(const cases::Case& contents, int steps) {
    Course course;
    engine::Engine engine(contents, 2, 64);
    engine.keep_maxima(arrival_depth);
    double t = 0.0, next = courant * engine.stable_step(0.0);
    for (int step = 0; step <= steps; ++step) {
      course.states.push_back(engine.state());
      course.times.push_back(t);
      course.steps.push_back(next);
      if (step == steps) break;
      const double applied = next;
      next = courant * engine.advance({t, 0.0, t_end, applied});
      t += cases::is_hll(contents.scheme) ? applied : next;
      std::vector<engine::BoundaryInflow>& inflows = course.inflows.emplace_back();
      for (std::size_t b = 0; b < contents.mesh.boundaries.size(); ++b) {
        inflows.push_back(engine.boundary_inflow(static_cast<int>(b)));
      }
    }
    return course;
  }

  static std::vector<ranks::Share> shares_of(const cases::Case& contents,
                                             const std::vector<ranks::Cells>& cells, int rings) {
    cases::PartCutter cutter(contents);
    const std::vector<int> owners = ranks::owners_of(cells);
    std::vector<ranks::Share> shares;
    for (const ranks::Cells& of_rank : cells) {
      shares.push_back(ranks::share_of(cutter, of_rank, owners, rings));
    }
    return shares;
  }
  static std::vector<ranks::Share> shares_of(const cases::Case& contents,
                                             const std::vector<ranks::Cells>& cells) {
    return shares_of(contents, cells, cases::rings_of(contents.scheme));
  }

  /// Numbers of the own cells in the whole case.
  static std::vector<Number> own_cells_of(const cases::Part& part) {
    return {part.cell_number.begin(), part.cell_number.begin() + part.owned};
  }

  static std::vector<double> entries_of(const std::vector<double>& column,
                                        const std::vector<Number>& cells) {
    std::vector<double> entries;
    if (column.empty()) return entries;
    for (const Number cell : cells) entries.push_back(column[at(cell)]);
    return entries;
  }

  static engine::State part_of(const engine::State& state, const std::vector<Number>& cells) {
    engine::State part = state;
    for (const auto column : engine::columns_of_flow) {
      part.*column = entries_of(state.*column, cells);
    }
    return part;
  }

  static bool have_same_bits(const std::vector<double>& a, const std::vector<double>& b) {
    if (a.size() != b.size()) return false;
    return a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
  }

  static bool have_same_bits(const engine::State& a, const engine::State& b) {
    return std::all_of(std::begin(engine::columns_of_flow), std::end(engine::columns_of_flow),
                       [&](const auto column) { return have_same_bits(a.*column, b.*column); });
  }

  /// Goes on from the first step of a run, and compares what it finds after each.
  static void expect_same_steps(const cases::Case& contents, const Course& expected,
                                const cases::Part& part, engine::Engine& engine, int first) {
    const std::vector<Number> own = own_cells_of(part);
    EXPECT_EQ(courant * engine.stable_step(expected.times[at(first)]), expected.steps[at(first)]);
    for (int step = first; step < expected.count(); ++step) {
      EXPECT_TRUE(have_same_bits(engine.state(), part_of(expected.states[at(step)], own)))
          << "before step " << step;
      const double next =
          engine.advance({expected.times[at(step)], 0.0, t_end, expected.steps[at(step)]});
      EXPECT_EQ(courant * next, expected.steps[at(step) + 1]) << "step " << step;
      expect_same_inflows(contents, expected.inflows[at(step)], part, engine);
    }
    EXPECT_TRUE(have_same_bits(engine.state(), part_of(expected.states.back(), own)));
  }

  static void expect_same_inflows(const cases::Case& contents,
                                  const std::vector<engine::BoundaryInflow>& expected,
                                  const cases::Part& part, const engine::Engine& engine) {
    const std::vector<Number>& numbers = part.boundary_number;
    for (std::size_t b = 0; b < expected.size(); ++b) {
      const Number cell = contents.mesh.left[at(contents.mesh.boundaries[b].edge)];
      const bool is_here = part.own_cell(cell) >= 0;
      const auto number = std::lower_bound(numbers.begin(), numbers.end(), static_cast<Number>(b));
      const bool is_known = number != numbers.end() && *number == static_cast<Number>(b);
      EXPECT_TRUE(is_known || !is_here) << b;
      if (!is_known) continue;
      const engine::BoundaryInflow inflow =
          engine.boundary_inflow(static_cast<int>(number - numbers.begin()));
      EXPECT_EQ(inflow.water, is_here ? expected[b].water : 0.0) << b;
      EXPECT_EQ(inflow.bed, is_here ? expected[b].bed : 0.0) << b;
    }
  }

  support::TemporaryFolder folder_;
};

}  // namespace test_ranks
