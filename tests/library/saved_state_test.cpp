// A state that is saved and loaded gives the same steps from there.
#include "library/LibraryTest.hpp"

namespace {

using quillmere::EdgeKind;
using quillmere::Simulation;
using quillmere::State;

class SavedState : public LibraryFiles {
 protected:
  static void act_upon(Simulation& simulation) {
    simulation.set_rain(std::vector<int>{1, 2}, std::vector<double>{2e-3, 3e-3});
    simulation.set_depth(std::vector<int>{4}, std::vector<double>{1.1});
  }

  /// From a state some steps after the start, further on and back, on other threads.
  void expect_the_same_steps(const support::Case& c, int steps_before) {
    Simulation one = open(c, 1);
    take_steps(one, steps_before);
    act_upon(one);
    if (!imposed_edges.empty()) one.set_boundary(imposed_edges.front(), -0.4);
    const State saved = one.save();
    const Sight present = sight_of(one);
    take_steps(one, 25);
    const State later = one.save();
    EXPECT_NE(later, saved);
    const Sight then = sight_of(one);

    Simulation other = open(c, 3);
    other.set_rain(0.1);  // which the state does not have
    other.load(saved);
    EXPECT_EQ(sight_of(other), present);
    take_steps(other, 25);
    EXPECT_EQ(other.save(), later);
    EXPECT_EQ(sight_of(other), then);
    EXPECT_EQ(other.steps(), one.steps());

    one.load(saved);
    EXPECT_EQ(one.save(), saved);
    take_steps(one, 25);
    EXPECT_EQ(one.save(), later);
  }

  std::vector<int> imposed_edges;
};

}  // namespace

TEST_F(SavedState, GivesTheSameStepsWithEverythingThatAStepDependsOn) {
  support::Case c = support::full_case(50, 40);
  c.set_times(0.0, 50.0);
  imposed_edges = c.edges_across(0);
  expect_the_same_steps(c, 0);
  expect_the_same_steps(c, 30);
}

TEST_F(SavedState, GivesTheSameStepsOverSand) {
  const support::Case c = sand_case(50, 40);
  imposed_edges = c.edges_across(0);
  expect_the_same_steps(c, 0);
  expect_the_same_steps(c, 30);
}

TEST_F(SavedState, TakesBackWhatWasImposed) {
  const quillmere::Case contents = open_pool(EdgeKind::discharge, -0.1);
  Simulation simulation(contents), untouched(contents);
  take_steps(simulation, 5);
  take_steps(untouched, 5);
  const State saved = simulation.save();
  for (const int edge : western_edges(contents)) simulation.set_boundary(edge, -2.0);
  simulation.set_rain(1e-2);
  take_steps(simulation, 5);
  simulation.load(saved);
  take_steps(simulation, 10);
  take_steps(untouched, 10);
  EXPECT_EQ(sight_of(simulation), sight_of(untouched));
  EXPECT_EQ(simulation.save(), untouched.save());
}

TEST_F(SavedState, IsRefusedWhereItIsNoneOrOfAnotherCase) {
  Simulation simulation(pool()), other(pool(5, 4));
  const State saved = simulation.save();
  EXPECT_THROW(other.load(saved), quillmere::Error);
  EXPECT_THROW(simulation.load({}), quillmere::Error);
  for (const std::size_t size : {std::size_t{7}, saved.size() / 2, saved.size() - 1}) {
    EXPECT_THROW(simulation.load(State(saved.begin(), saved.begin() + static_cast<long>(size))),
                 quillmere::Error);
  }
  State longer = saved;
  longer.push_back({});
  EXPECT_THROW(simulation.load(longer), quillmere::Error);
  State otherwise = saved;
  otherwise[0] = std::byte{0xff};
  EXPECT_THROW(simulation.load(otherwise), quillmere::Error);
  simulation.load(saved);
}
