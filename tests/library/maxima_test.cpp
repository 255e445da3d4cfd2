// The maxima of the flow, as a program asks a simulation for them.
#include <cmath>
#include <cstring>

#include "library/LibraryTest.hpp"

namespace {

using quillmere::Field;
using quillmere::Simulation;
using quillmere::State;

/// The western two squares are 2 m deep, the rest is dry.
quillmere::Case dam_break() {
  quillmere::Case contents = pool();
  for (std::size_t i = 0; i < contents.level.size(); ++i) {
    contents.level[i] = i % 12 < 4 ? 2.0 : 0.0;
  }
  return contents;
}

bool have_same_maxima(const Simulation& a, const Simulation& b) {
  for (const Field field : maxima_fields) {
    const std::vector<double> x = a.read(field), y = b.read(field);
    if (std::memcmp(x.data(), y.data(), x.size() * sizeof(double)) != 0) return false;
  }
  return true;
}

class LibraryMaxima : public LibraryFiles {};

}  // namespace

TEST_F(LibraryMaxima, AreThoseOfAllStatesFromTheStartToThePresent) {
  Simulation simulation(dam_break());
  simulation.keep_maxima(0.1);
  const auto n_cells = static_cast<std::size_t>(simulation.number_of_cells());
  std::vector<double> depth(n_cells, 0.0), speed(n_cells, 0.0), discharge(n_cells, 0.0),
      time(n_cells, NAN), arrival(n_cells, NAN), under(n_cells, 0.0), level(n_cells, NAN);
  const auto look = [&] {
    const auto h = simulation.read(Field::depth), qx = simulation.read(Field::discharge_x),
               qy = simulation.read(Field::discharge_y), bed = simulation.read(Field::bed_level);
    for (std::size_t i = 0; i < n_cells; ++i) {
      if (h[i] > depth[i]) {
        depth[i] = h[i];
        time[i] = simulation.time();
      }
      if (h[i] > 0.1 && std::isnan(arrival[i])) arrival[i] = simulation.time();
      if (!(h[i] > 1e-3)) continue;
      level[i] = std::fmax(level[i], bed[i] + h[i]);
      speed[i] = std::fmax(speed[i], std::hypot(qx[i], qy[i]) / h[i]);
      discharge[i] = std::fmax(discharge[i], std::hypot(qx[i], qy[i]));
    }
  };
  const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  for (int step = 0; step < 60; ++step) {
    const double before = simulation.time();
    look();
    const auto h = simulation.read(Field::depth);
    simulation.step();
    for (std::size_t i = 0; i < n_cells; ++i) {
      if (h[i] > 0.1) under[i] += simulation.time() - before;
    }
  }
  look();
  const auto peak = simulation.read(Field::peak_depth), when = simulation.read(Field::time_of_peak),
             first = simulation.read(Field::arrival_time),
             highest = simulation.read(Field::peak_level),
             fastest = simulation.read(Field::peak_speed),
             strongest = simulation.read(Field::peak_discharge),
             wet = simulation.read(Field::time_under_water);
  int arrived = 0;
  for (std::size_t i = 0; i < n_cells; ++i) {
    EXPECT_EQ(peak[i], depth[i]) << i;
    EXPECT_TRUE(same(when[i], time[i])) << i;
    EXPECT_TRUE(same(first[i], arrival[i])) << i;
    EXPECT_TRUE(same(highest[i], level[i])) << i;
    EXPECT_NEAR(fastest[i], speed[i], 1e-14 * speed[i]) << i;
    EXPECT_NEAR(strongest[i], discharge[i], 1e-14 * discharge[i]) << i;
    EXPECT_NEAR(wet[i], under[i], 1e-12) << i;
    arrived += first[i] > 0.0 ? 1 : 0;
  }
  EXPECT_GT(arrived, 10);
  EXPECT_EQ(when[0], 0.0);  // the start counts
}

TEST_F(LibraryMaxima, ALookChangesNothing) {
  Simulation one(dam_break()), other(dam_break());
  for (Simulation* const simulation : {&one, &other}) simulation->keep_maxima(0.1);
  for (int step = 0; step < 40; ++step) {
    one.read(Field::time_under_water);
    one.step();
    other.step();
  }
  EXPECT_TRUE(have_same_maxima(one, other));
  EXPECT_EQ(one.save(), other.save());
}

TEST_F(LibraryMaxima, HoldWhatACallerTakesAway) {
  Simulation simulation(pool());
  simulation.keep_maxima(0.1);
  const std::vector<int> cell = {3};
  simulation.step();
  simulation.set_depth(cell, std::vector<double>{5.0});
  simulation.set_depth(cell, std::vector<double>{1.0});
  EXPECT_EQ(simulation.read(Field::peak_depth)[3], 5.0);
  EXPECT_EQ(simulation.read(Field::time_of_peak)[3], simulation.time());
  simulation.step();
  EXPECT_EQ(simulation.read(Field::peak_depth)[3], 5.0);
}

TEST_F(LibraryMaxima, GoWithTheState) {
  const support::Case c = support::full_case(30, 20);
  Simulation one = open(c, 1), other = open(c, 3), without = open(c, 1);
  one.keep_maxima();
  other.keep_maxima();
  take_steps(one, 20);
  const State saved = one.save();
  take_steps(one, 20);
  other.load(saved);
  EXPECT_FALSE(have_same_maxima(one, other));
  take_steps(other, 20);
  EXPECT_TRUE(have_same_maxima(one, other));
  EXPECT_EQ(one.save(), other.save());

  EXPECT_THROW(without.load(saved), quillmere::Error);
  EXPECT_THROW(one.load(without.save()), quillmere::Error);
}

TEST_F(LibraryMaxima, MustBeAskedForBeforeTheSteps) {
  Simulation simulation(pool());
  EXPECT_THROW(simulation.read(Field::peak_depth), quillmere::Error);
  EXPECT_THROW(simulation.keep_maxima(-1.0), quillmere::Error);
  EXPECT_THROW(simulation.keep_maxima(NAN), quillmere::Error);
  simulation.step();
  EXPECT_THROW(simulation.keep_maxima(), quillmere::Error);
}
