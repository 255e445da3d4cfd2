#include "utils/TextBuffer.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/trials.hpp"

namespace {

using Limits = std::numeric_limits<double>;

std::string default_text(double value) {
  utils::TextBuffer buffer;
  buffer << value;
  return std::string(buffer.text());
}

std::string fixed_text(double value) {
  utils::TextBuffer buffer;
  buffer.use_fixed_notation();
  buffer << value;
  return std::string(buffer.text());
}

std::string default_stream_text(double value) {
  std::ostringstream stream;
  stream << value;
  return stream.str();
}

std::string fixed_stream_text(double value) {
  std::ostringstream stream;
  stream << std::fixed << std::setprecision(3) << value;
  return stream.str();
}

void expect_the_text_of_a_stream(double value) {
  ASSERT_EQ(default_text(value), default_stream_text(value));
  ASSERT_EQ(fixed_text(value), fixed_stream_text(value));
}

TEST(TextBuffer, WritesSpecialValuesLikeAStream) {
  for (const double value : {0.0,
                             -0.0,
                             1.0,
                             -1.0,
                             0.1,
                             1e5,
                             1e6,
                             999999.0,
                             999999.5,
                             1e-4,
                             1e-5,
                             0.0005,
                             0.0015,
                             0.0025,
                             1234567.0,
                             123456.5,
                             2.5,
                             1000.0005,
                             Limits::min(),
                             Limits::max(),
                             Limits::lowest(),
                             Limits::denorm_min(),
                             -Limits::denorm_min(),
                             Limits::epsilon(),
                             Limits::infinity(),
                             -Limits::infinity(),
                             Limits::quiet_NaN(),
                             -Limits::quiet_NaN()}) {
    expect_the_text_of_a_stream(value);
  }
}

TEST(TextBuffer, WritesAnyBitPatternLikeAStream) {
  std::mt19937_64 random(20240229);
  for (int i = 0; i < support::trials(500000); ++i) {
    expect_the_text_of_a_stream(std::bit_cast<double>(random()));
  }
}

TEST(TextBuffer, WritesEverydayMagnitudesLikeAStream) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-12, 12);
  for (int i = 0; i < support::trials(1000000); ++i) {
    expect_the_text_of_a_stream(mantissa(random) * std::pow(10.0, exponent(random)));
  }
}

TEST(TextBuffer, WritesTiesLikeAStream) {
  // Halves of the last digit shown, exact in binary.
  for (int i = -4000; i <= 4000; ++i) {
    expect_the_text_of_a_stream(i / 16.0);
    expect_the_text_of_a_stream(100000.0 + i / 2.0);
    expect_the_text_of_a_stream(1000.0 + i / 2048.0);
  }
}

TEST(TextBuffer, WritesWhatLiesNearATieLikeAStream) {
  std::mt19937_64 random(13);
  std::uniform_int_distribution<int> digits(100000, 999999), exponent(-30, 30);
  for (int i = 0; i < support::trials(200000); ++i) {
    const double middle = (digits(random) + 0.5) * std::pow(10.0, exponent(random));
    expect_the_text_of_a_stream(middle);
    expect_the_text_of_a_stream(std::nextafter(middle, 0.0));
    expect_the_text_of_a_stream(std::nextafter(-middle, -Limits::infinity()));
    const double thousandths = (digits(random) + 0.5) / 1000.0;
    expect_the_text_of_a_stream(thousandths);
    expect_the_text_of_a_stream(std::nextafter(thousandths, 0.0));
  }
}

TEST(TextBuffer, WritesWhatLiesNearAPowerOfTenLikeAStream) {
  for (int exponent = -307; exponent <= 308; ++exponent) {
    const double power = std::stod("1e" + std::to_string(exponent));
    for (const double factor : {1.0, 0.9999995, 0.99999949, 1.0000005, 0.99999951, 9.999995}) {
      double below = factor * power, above = factor * power;
      for (int i = 0; i < 20; ++i) {
        expect_the_text_of_a_stream(below);
        expect_the_text_of_a_stream(-above);
        below = std::nextafter(below, 0.0);
        above = std::nextafter(above, Limits::infinity());
      }
    }
  }
}

TEST(TextBuffer, WritesIntegersLikeAStream) {
  for (int i = -200000; i <= 2000000; i += 7) expect_the_text_of_a_stream(i);
}

TEST(TextBuffer, WritesDenormalsLikeAStream) {
  std::mt19937_64 random(11);
  constexpr std::uint64_t mantissa_bits = (1ULL << 52) - 1;
  for (int i = 0; i < 10000; ++i) {
    expect_the_text_of_a_stream(std::bit_cast<double>(random() & mantissa_bits));
  }
}

TEST(TextBuffer, KeepsItsNotationUntilItIsChanged) {
  utils::TextBuffer buffer;
  buffer << 1234.5 << ' ';
  buffer.use_fixed_notation();
  buffer << 1234.5 << ' ' << 0.25 << ' ';
  buffer.clear();
  buffer << 2.0 << ' ';
  buffer.use_default_notation();
  buffer << 1234.5678;
  EXPECT_EQ(buffer.text(), "2.000 1234.57");
}

TEST(TextBuffer, AppendsTextAndCharactersAsTheyAre) {
  utils::TextBuffer buffer;
  buffer << "a\tb" << '\n' << std::string("c") << 1.5;
  EXPECT_EQ(buffer.text(), "a\tb\nc1.5");
}

}  // namespace
