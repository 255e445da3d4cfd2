#include "utils/ExactSum.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "utils/bytes.hpp"

namespace {

using utils::ExactSum;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

ExactSum exact_sum(const std::vector<double>& terms) {
  ExactSum sum;
  for (const double term : terms) sum.add(term);
  return sum;
}
double value_of(const std::vector<double>& terms) { return exact_sum(terms).value(); }

utils::Bytes bytes_of(const ExactSum& sum) {
  utils::Bytes bytes;
  utils::put_into(bytes, sum);
  return bytes;
}

/// Any finite double, of any size.
std::vector<double> any_doubles(int count, unsigned seed) {
  std::mt19937_64 generator(seed);
  std::vector<double> terms;
  while (terms.size() < static_cast<std::size_t>(count)) {
    const auto term = std::bit_cast<double>(generator());
    if (std::isfinite(term)) terms.push_back(term);
  }
  return terms;
}

}  // namespace

TEST(ExactSum, OfNothingIsZero) {
  EXPECT_EQ(ExactSum().value(), 0.0);
  EXPECT_FALSE(std::signbit(value_of({-0.0})));
  EXPECT_FALSE(std::signbit(value_of({1.5, -1.5})));
}

TEST(ExactSum, OfOneTermIsTheTerm) {
  for (double term : any_doubles(10000, 1)) EXPECT_EQ(value_of({term}), term);
  for (const double term : {smallest, -smallest, std::numeric_limits<double>::min(), largest,
                            -largest, 0.1, 1.0, std::ldexp(1.0, 31), std::ldexp(1.0, -1042)}) {
    EXPECT_EQ(value_of({term}), term);
  }
}

TEST(ExactSum, KeepsWhatRoundingWouldLose) {
  EXPECT_EQ(value_of({1e308, -1e308, 1e-308}), 1e-308);
  EXPECT_EQ(value_of({1.0, 1e100, 1.0, -1e100}), 2.0);
  EXPECT_EQ(value_of({smallest, largest, -largest}), smallest);
  EXPECT_EQ(value_of({-smallest, largest, smallest, -largest}), 0.0);
  ExactSum sum;
  sum.add(1.0);
  for (int i = 0; i < 1000; ++i) sum.add(1e-17);  // far below half a unit in the last place of 1
  EXPECT_EQ(sum.value(), 1.0 + 1e-14);
}

TEST(ExactSum, OfTwoTermsIsThatOfTheMachine) {
  const std::vector<double> terms = any_doubles(20000, 2);
  std::mt19937 generator(3);
  for (std::size_t i = 0; i + 1 < terms.size(); i += 2) {
    EXPECT_EQ(value_of({terms[i], terms[i + 1]}), terms[i] + terms[i + 1]);
    // Near each other, where digits cancel and the rounding counts.
    const double near = terms[i] * (1.0 + std::ldexp(static_cast<double>(generator()), -48));
    if (!std::isfinite(near)) continue;
    EXPECT_EQ(value_of({terms[i], -near}), terms[i] - near);
    EXPECT_EQ(value_of({terms[i], near / 1024.0}), terms[i] + near / 1024.0);
  }
}

TEST(ExactSum, RoundsToNearestAndToEven) {
  const double unit = std::ldexp(1.0, -52), half = unit / 2;
  EXPECT_EQ(value_of({1.0, half}), 1.0);
  EXPECT_EQ(value_of({1.0, half, smallest}), 1.0 + unit);
  EXPECT_EQ(value_of({1.0 + unit, half}), 1.0 + 2 * unit);
  EXPECT_EQ(value_of({1.0 + unit, half, -smallest}), 1.0 + unit);
  EXPECT_EQ(value_of({-1.0, -half, -smallest}), -1.0 - unit);
  EXPECT_EQ(value_of({2.0 - unit, half}), 2.0);  // into the next power of two
}

TEST(ExactSum, HasRoomAboveTheLargestDouble) {
  std::vector<double> terms(1000, largest);
  EXPECT_EQ(value_of(terms), infinity);
  terms.resize(1999, -largest);
  EXPECT_EQ(value_of(terms), largest);
  EXPECT_EQ(value_of({largest, std::ldexp(1.0, 969)}), largest);
  EXPECT_EQ(value_of({largest, std::ldexp(1.0, 970)}), infinity);  // where rounding goes up
}

TEST(ExactSum, OfSubnormalsIsExact) {
  ExactSum sum;
  for (int i = 0; i < 5; ++i) sum.add(3 * smallest);
  EXPECT_EQ(sum.value(), 15 * smallest);
  sum.add(-16 * smallest);
  EXPECT_EQ(sum.value(), -smallest);
  const double normal = std::numeric_limits<double>::min();
  EXPECT_EQ(value_of({normal, -smallest, smallest}), normal);
  EXPECT_EQ(value_of({normal, -smallest}), normal - smallest);
}

TEST(ExactSum, TellsInfinitiesAndWhatIsNoNumber) {
  EXPECT_EQ(value_of({1.0, infinity, -largest}), infinity);
  EXPECT_EQ(value_of({-infinity, 1.0}), -infinity);
  EXPECT_TRUE(std::isnan(value_of({infinity, 1.0, -infinity})));
  EXPECT_TRUE(std::isnan(value_of({1.0, not_a_number})));
  ExactSum sum = exact_sum({infinity});
  sum.add(exact_sum({-infinity}));
  EXPECT_TRUE(std::isnan(sum.value()));
}

TEST(ExactSum, KnowsNoOrderAndNoParts) {
  std::vector<double> terms = any_doubles(500, 4);
  for (const double term : any_doubles(500, 5)) terms.push_back(std::fmod(term, 10.0));
  for (std::size_t i = 0; i < 500; i += 3) terms.push_back(-terms[i]);
  const ExactSum all = exact_sum(terms);
  std::mt19937 generator(6);
  for (int round = 0; round < 50; ++round) {
    std::shuffle(terms.begin(), terms.end(), generator);
    std::vector<ExactSum> parts(1 + generator() % 7);
    for (const double term : terms) parts[generator() % parts.size()].add(term);
    ExactSum sum;
    for (const ExactSum& part : parts) sum.add(part);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(sum.value()), std::bit_cast<std::uint64_t>(all.value()));
    EXPECT_TRUE(bytes_of(sum) == bytes_of(all));
  }
}

TEST(ExactSum, GoesOnFromItsBytes) {
  ExactSum sum = exact_sum({1.0, -1e300, 1e-300}), copy;
  utils::take_out_of(bytes_of(sum), copy);
  copy.add(1e300);
  copy.add(-1.0);
  EXPECT_EQ(copy.value(), 1e-300);
  utils::take_out_of(bytes_of(exact_sum({infinity})), copy);
  EXPECT_EQ(copy.value(), infinity);
  utils::Bytes bad = bytes_of(sum);
  bad[7] = std::byte{1};  // the lowest digit is one of more than 32 bits
  EXPECT_THROW(utils::take_out_of(bad, copy), utils::BadBytes);
}
