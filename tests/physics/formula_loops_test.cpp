// Vectorised loops of every instruction set that the machine has give the bits of single calls.
#include "support/formula_loops/formula_loops.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace formula_loops_test {

namespace {

using formula_loops::Loops;

/// Random bit patterns (every exponent, subnormal numbers, infinity, NaN among them), numbers of a
/// flow, and the ends of the range.
std::vector<double> numbers_of_all_kinds() {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  std::vector<double> numbers = {0.0, -0.0, 1.0, infinity, -infinity, 5e-324, 1e308, 1e-310};
  std::mt19937_64 generator(11);
  std::uniform_real_distribution<double> logarithm(-20.0, 20.0), exponent(-800.0, 800.0);
  for (int i = 0; i < 100000; ++i) {
    numbers.push_back(std::bit_cast<double>(generator()));
    numbers.push_back(std::exp(logarithm(generator)));
    numbers.push_back(exponent(generator));
  }
  return numbers;
}

bool same_bits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

template <class Formula>
void expect_single_calls(const Loops& loops, formula_loops::Loop loop, Formula formula) {
  const std::vector<double> x = numbers_of_all_kinds();
  std::vector<double> y(x.size());
  loop(x.data(), y.data(), x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    ASSERT_TRUE(same_bits(y[i], formula(x[i]))) << loops.instruction_set << " of " << x[i];
  }
}

/// Fresh soils, with room, full, overfull and below zero; under dry and wet cells.
struct Cells {
  std::vector<double> h, F, D;
};

Cells random_cells(double Fmax) {
  std::mt19937 generator(7);
  std::uniform_real_distribution<double> depth(-0.001, 0.02), fill(-0.1, 1.2), demand(-1e-4, 1e-4);
  Cells cells;
  for (int i = 0; i < 4001; ++i) {
    const double F = fill(generator) * Fmax;
    cells.h.push_back(i % 5 == 0 ? 0.0 : depth(generator));
    cells.F.push_back(i % 3 == 0 ? 0.0 : i % 7 == 0 ? Fmax : F);
    cells.D.push_back(demand(generator));
  }
  return cells;
}

template <class Soil, class Formula>
void expect_single_cells(const Loops& loops, formula_loops::SoilLoop<Soil> loop, const Soil& soil,
                         Formula formula) {
  constexpr double dt = 0.7;
  const Cells before = random_cells(soil.Fmax);
  Cells after = before;
  const std::size_t n = before.h.size();
  loop(soil, physics::soil_step(soil, dt), before.h.data(), after.F.data(), after.D.data(), n);
  int active = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const physics::Infiltration s = formula(soil, before.h[i], before.F[i], before.D[i], dt);
    ASSERT_TRUE(same_bits(after.D[i], s.demand)) << loops.instruction_set << ", cell " << i;
    ASSERT_TRUE(same_bits(after.F[i], s.infiltrated)) << loops.instruction_set << ", cell " << i;
    active += s.demand != before.D[i];
  }
  EXPECT_GT(active, 2000);
  EXPECT_LT(active, 4001);
}

}  // namespace

TEST(FormulaLoops, ExponentialAndLogarithmHaveTheBitsOfSingleCalls) {
  for (const Loops& loops : formula_loops::of_this_machine()) {
    expect_single_calls(loops, loops.exponential, physics::exponential);
    expect_single_calls(loops, loops.natural_logarithm, physics::natural_logarithm);
  }
}

TEST(FormulaLoops, PowersHaveTheBitsOfSingleCalls) {
  for (const Loops& loops : formula_loops::of_this_machine()) {
    expect_single_calls(loops, loops.power_2_3, physics::power_2_3);
  }
}

TEST(FormulaLoops, SoilsTakeWhatTheirCellsTakeOneByOne) {
  for (const Loops& loops : formula_loops::of_this_machine()) {
    for (const double kr : {0.0, 1e-3}) {
      expect_single_cells(loops, loops.green_ampt, {1e-5, 0.1, 0.2, 0.5, kr},
                          [](const auto&... x) { return physics::infiltration_green_ampt(x...); });
      expect_single_cells(loops, loops.horton, {5e-5, 1e-5, 100.0, 0.05, kr},
                          [](const auto&... x) { return physics::infiltration_horton(x...); });
    }
  }
}

}  // namespace formula_loops_test
