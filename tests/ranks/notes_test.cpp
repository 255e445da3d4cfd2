// Ranks take the notes of one engine.
#include <gtest/gtest.h>

#include "ranks/RanksInProcess.hpp"

using namespace test_ranks;

namespace {

class NotesOfRanks : public RanksInProcess {
 protected:
  /// What an engine notes at its start and after every step.
  struct Notes {
    std::vector<physics::StepNotes> steps;
    std::vector<engine::UnseenDepths> unseen;  ///< of all cells, at the end
  };

  static std::vector<physics::StepNotes> notes_of_steps(engine::Engine& engine, int steps) {
    engine.watch(0.0);
    std::vector<physics::StepNotes> notes = {engine.notes()};
    double t = 0.0, next = courant * engine.stable_step(0.0);
    for (int i = 0; i < steps; ++i) {
      next = courant * engine.advance({t, 0.0, t_end, next});
      t += next;
      notes.push_back(engine.notes());
    }
    return notes;
  }

  static Notes notes_alone(const cases::Case& contents, int steps) {
    engine::Engine engine(contents, 2, 64);
    Notes notes = {notes_of_steps(engine, steps), {}};
    for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      notes.unseen.push_back(engine.unseen_depths(cell));
    }
    return notes;
  }

  static void expect_same_notes(const cases::Case& contents, int steps) {
    const Notes expected = notes_alone(contents, steps);
    for (const int count : {2, 3, 5}) expect_same_notes(contents, expected, count, {});
    for (const int count : {1, 3}) {
      expect_same_notes(contents, expected, count, {.device = engine::Device::emulated});
    }
  }

  static void expect_same_notes(const cases::Case& contents, const Notes& expected, int count,
                                const engine::Processor& processor) {
    const auto shares = shares_of(contents, ranks::cut_along_curve(contents.mesh, count));
    run_side_by_side(
        shares, 1, 64,
        [&](int rank, engine::Engine& engine) {
          const auto steps = static_cast<int>(expected.steps.size()) - 1;
          const std::vector<physics::StepNotes> notes = notes_of_steps(engine, steps);
          for (std::size_t i = 0; i < notes.size(); ++i) {
            expect_same_note(notes[i], expected.steps[i]);
          }
          const cases::Part& part = shares[at(rank)].part;
          for (Number cell = 0; cell < part.owned; ++cell) {
            const Number number = part.cell_number[at(cell)];
            const engine::UnseenDepths unseen = engine.unseen_depths(cell);
            EXPECT_EQ(unseen.recovered, expected.unseen[at(number)].recovered) << number;
            EXPECT_EQ(unseen.lifted, expected.unseen[at(number)].lifted) << number;
          }
        },
        processor);
  }

  static void expect_same_note(const physics::StepNotes& a, const physics::StepNotes& b) {
    EXPECT_EQ(a.limiting_cell, b.limiting_cell);
    EXPECT_EQ(a.speed_squared.value, b.speed_squared.value);
    EXPECT_EQ(a.speed_squared.cell, b.speed_squared.cell);
    EXPECT_EQ(a.speed_squared_per_depth.value, b.speed_squared_per_depth.value);
    EXPECT_EQ(a.speed_squared_per_depth.cell, b.speed_squared_per_depth.cell);
    EXPECT_EQ(a.not_finite, b.not_finite);
    EXPECT_EQ(a.films, b.films);
  }

  /// Level of a basin that is the same from west to east and from east to west.
  static cases::Case symmetric_wave(double height) {
    const support::RunGlobals globals(1e-3, 1.0, t_end);
    const auto model = support::build_rectangle<SWE>({26, 14, 26.0, 14.0});
    support::fill(*model,
                  [&](double x, double) { return x > 6.0 && x < 20.0 ? 1.0 + height : 1.0; });
    return support::case_of(*model);
  }
};

}  // namespace

TEST_F(NotesOfRanks, AreThoseOfOneEngine) {
  for (const bool mostly_dry : {false, true}) {
    expect_same_notes(basin({.mostly_dry = mostly_dry}), 40);
    expect_same_notes(basin({.sediments = true, .mostly_dry = mostly_dry}), 40);
    cases::Case second_order = basin({.mostly_dry = mostly_dry});
    second_order.scheme = cases::Scheme::hll2;
    expect_same_notes(second_order, 40);
  }
}

TEST_F(NotesOfRanks, OfCellsThatAreAlikeNameTheSameOne) {
  for (const double height : {0.0, 0.5}) expect_same_notes(symmetric_wave(height), 30);
}

TEST_F(NotesOfRanks, CountCellsThatAreNotFinite) {
  cases::Case contents = basin({.soils = false});
  for (const std::size_t cell : {100, 300, 600}) contents.fields.level[cell] = HUGE_VAL;
  EXPECT_GE(notes_alone(contents, 3).steps.back().not_finite, 3);
  expect_same_notes(contents, 3);
}

TEST_F(NotesOfRanks, KeepTheCellThatLimitedTheStepBefore) {
  const auto of_cell = [](int cell) {
    physics::StepNotes notes;
    notes.limiting_cell = cell;
    return notes;
  };
  EXPECT_EQ(engine::united(of_cell(3), of_cell(7), 7).limiting_cell, 7);
  EXPECT_EQ(engine::united(of_cell(7), of_cell(3), 7).limiting_cell, 7);
  EXPECT_EQ(engine::united(of_cell(7), of_cell(3), 5).limiting_cell, 3);
  EXPECT_EQ(engine::united(of_cell(-1), of_cell(3), -1).limiting_cell, 3);
}

TEST_F(NotesOfRanks, NameTheLowestOfCellsWithTheSameRecord) {
  const auto of_record = [](double value, int cell) {
    physics::StepNotes notes;
    notes.speed_squared = {value, cell};
    return notes;
  };
  const auto cell_of = [&](const physics::StepNotes& a, const physics::StepNotes& b) {
    return engine::united(a, b, -1).speed_squared.cell;
  };
  EXPECT_EQ(cell_of(of_record(2.0, 8), of_record(2.0, 5)), 5);
  EXPECT_EQ(cell_of(of_record(2.0, 5), of_record(2.0, 8)), 5);
  EXPECT_EQ(cell_of(of_record(2.0, 8), of_record(1.0, 5)), 8);
  EXPECT_EQ(cell_of(of_record(0.0, -1), of_record(0.0, -1)), -1);
}

TEST_F(NotesOfRanks, TellTheStateOfTheCellOfTheSmallestStep) {
  const auto of = [](double step, int cell, double depth) {
    engine::NotedStep told{.minimum = {.step = step}};
    told.notes.limiting_cell = cell;
    told.states[0] = {cell, {.h = depth}};
    return told;
  };
  const auto expect = [](const engine::NotedStep& told, int cell, double depth) {
    EXPECT_EQ(told.notes.limiting_cell, cell);
    EXPECT_EQ(told.states[0].cell, cell);
    EXPECT_EQ(told.states[0].state.h, depth);
  };
  const auto expect_of_both = [&](const engine::NotedStep& a, const engine::NotedStep& b, int cell,
                                  double depth) {
    expect(engine::united(a, b), cell, depth);
    expect(engine::united(b, a), cell, depth);
  };
  expect_of_both(of(2.0, 3, 0.1), of(1.0, 7, 0.2), 7, 0.2);
  expect_of_both(of(1.0, 3, 0.1), of(1.0, 7, 0.2), 3, 0.1);
  expect_of_both(of(2.0, 3, 0.1), of(1.0, -1, 0.0), -1, 0.0);  // dry cells set it
}

TEST_F(NotesOfRanks, TellTheStateOfANewRecord) {
  const auto of = [](double value, int cell, bool is_new) {
    engine::NotedStep told;
    told.notes.speed_squared = {value, cell};
    if (is_new) told.states[1] = {cell, {.h = 0.5}};
    return told;
  };
  const engine::NotedStep before = of(2.0, 8, false);
  for (const int cell : {5, 9}) {
    for (const auto& told : {engine::united(before, of(3.0, cell, true)),
                             engine::united(of(3.0, cell, true), before)}) {
      EXPECT_EQ(told.states[1].cell, cell);
      EXPECT_EQ(told.states[1].state.h, 0.5);
    }
  }
  EXPECT_EQ(engine::united(before, before).states[1].cell, -1);
}
