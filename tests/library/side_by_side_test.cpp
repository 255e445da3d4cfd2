// Simulations in one process know nothing of each other, and the process nothing of them.
#include <cstdlib>
#include <thread>

#include "library/LibraryTest.hpp"

namespace {

using quillmere::Simulation;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

class SideBySide : public LibraryFiles {
 protected:
  /// Two that differ in all that once was global: clock, dry depth and sediment.
  Simulation with_everything(int threads) {
    support::Case c = support::full_case(50, 40);
    c.set_times(3.0, 50.0);
    return open(c, threads);
  }
  Simulation over_sand(int threads) { return open(sand_case(50, 40), threads); }
};

}  // namespace

TEST_F(SideBySide, InTurnsHaveTheBitsOfEachAlone) {
  Simulation one = with_everything(1), two = over_sand(1);
  take_steps(one, 40);
  take_steps(two, 40);
  Simulation first = with_everything(2), second = over_sand(2);
  for (int i = 0; i < 40; ++i) {
    first.step();
    second.step();
  }
  EXPECT_EQ(sight_of(first), sight_of(one));
  EXPECT_EQ(sight_of(second), sight_of(two));
}

TEST_F(SideBySide, OnTwoThreadsHaveTheBitsOfEachAlone) {
  Simulation one = with_everything(1), two = over_sand(1);
  take_steps(one, 200);
  take_steps(two, 200);
  Simulation first = with_everything(2), second = over_sand(2);
  std::thread thread([&] { take_steps(first, 200); });
  take_steps(second, 200);
  thread.join();
  EXPECT_EQ(sight_of(first), sight_of(one));
  EXPECT_EQ(sight_of(second), sight_of(two));
}

TEST_F(SideBySide, CanBeSetUpOnTwoThreads) {
  const auto sight_after_steps = [] {
    Simulation simulation(pool(20, 20));
    simulation.set_rain(1e-3);
    take_steps(simulation, 10);
    return sight_of(simulation);
  };
  const Sight expected = sight_after_steps();
  Sight there;
  std::thread thread([&] { there = sight_after_steps(); });
  const Sight here = sight_after_steps();
  thread.join();
  EXPECT_EQ(here, expected);
  EXPECT_EQ(there, expected);
}

TEST_F(SideBySide, AMovedSimulationGoesOn) {
  Simulation one(pool());
  Simulation other = std::move(one);
  one = Simulation(pool(2, 2));
  other.step();
  EXPECT_EQ(other.number_of_cells(), 48);
  EXPECT_EQ(one.number_of_cells(), 8);
}

TEST_F(SideBySide, SayNothingAndLeaveTheProcessAsItIs) {
  setenv("QUILLMERE_ENGINE", "fables", 1);
  setenv("QUILLMERE_ISA", "abacus", 1);
  const auto before = std::filesystem::current_path();
  CaptureStdout();
  CaptureStderr();
  support::Case c = support::full_case();
  c.data["CFL"] = 5.0;  // which is warned of
  Simulation simulation = open(c);
  EXPECT_FALSE(simulation.take_warnings().empty());
  take_steps(simulation, 3);
  c.west = "-99";
  EXPECT_NE(refusal_of(c), "");
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_EQ(std::filesystem::current_path(), before);
  unsetenv("QUILLMERE_ENGINE");
  unsetenv("QUILLMERE_ISA");
}
