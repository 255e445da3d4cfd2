#include "utils/number_text.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <sstream>

#include "support/CommaLocale.hpp"
#include "support/TemporaryFolder.hpp"
#include "utils/TextScanner.hpp"
#include "utils/snapshot_name.hpp"

namespace {

constexpr double largest_double = std::numeric_limits<double>::max();

TEST(NumberText, IsThatOfAStream) {
  for (const double value : {0.0, -0.0, 1.0, -2.5, 1e5, 1e6, 123456789.0, 1e-5, 0.1, 1.0 / 3.0,
                             largest_double, std::numeric_limits<double>::denorm_min(), HUGE_VAL}) {
    for (const int digits : {3, 6, 12, 15}) {
      std::ostringstream stream;
      stream.precision(digits);
      stream << value;
      EXPECT_EQ(utils::number_text(value, digits), stream.str());
    }
    std::ostringstream stream;
    stream.precision(6);
    stream << std::fixed << value;
    EXPECT_EQ(utils::fixed_text(value, 6), stream.str());
  }
}

TEST(NumberText, HasAPointInEveryLocale) {
  const support::CommaLocale locale;
  std::ostringstream stream;
  stream << 1234.5;
  ASSERT_EQ(stream.str(), "1.234,5");
  EXPECT_EQ(utils::number_text(1234.5), "1234.5");
  EXPECT_EQ(utils::fixed_text(1234.5, 2), "1234.50");
  EXPECT_EQ(utils::snapshot_name(1234.5), "pic_1234_50.txt");
}

TEST(ParseNumber, TakesWhatIsTooSmallForZeroAndRefusesWhatIsTooLarge) {
  for (const bool has_comma : {false, true}) {
    std::optional<support::CommaLocale> locale;
    if (has_comma) locale.emplace();
    double value = 1.0;
    EXPECT_TRUE(utils::parse_number("1.5e-400", value));
    EXPECT_EQ(value, 0.0) << has_comma;
    EXPECT_TRUE(utils::parse_number("1234.5", value));
    EXPECT_EQ(value, 1234.5) << has_comma;
    for (const char* const text : {"1.5e400", "-1.5e400", "1,5", "1.234,5", "", "x", "1x"}) {
      EXPECT_FALSE(utils::parse_number(text, value)) << text << has_comma;
    }
  }
}

TEST(ParseNumber, IsThatOfTheScannerOfInputFiles) {
  const support::TemporaryFolder folder;
  const support::CommaLocale locale;
  utils::TextScanner file(folder.write("values.txt", "1.5e-400 2.5 1234.5 12345678901234567.5"));
  EXPECT_EQ(file.read_number("value"), 0.0);
  EXPECT_EQ(file.read_number("value"), 2.5);
  EXPECT_EQ(file.read_number("value"), 1234.5);
  EXPECT_EQ(file.read_number("value"), 12345678901234567.5);
}

TEST(ExactText, HasTwelveDigitsOrAsManyAsReadBackToTheSameBits) {
  EXPECT_EQ(utils::exact_text(0.1), "0.1");
  EXPECT_EQ(utils::exact_text(-0.0), "-0");
  EXPECT_EQ(utils::exact_text(123456789012.0), "123456789012");
  EXPECT_EQ(utils::exact_text(1234567890123.0), "1234567890123");
  EXPECT_EQ(utils::exact_text(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(utils::exact_text(1.0 / 3.0), "0.3333333333333333");
}

TEST(ParseFiniteNumber, IsTheWholeTextOrNone) {
  EXPECT_EQ(utils::parse_finite_number("+1.5e2"), 150.0);
  EXPECT_EQ(utils::parse_finite_number("-7"), -7.0);
  for (const char* text : {"", "+-1", "1.5x", "inf", "nan", "1e999", "0x1"}) {
    EXPECT_EQ(utils::parse_finite_number(text), std::nullopt) << text;
  }
}

TEST(ParseInteger, IsTheWholeTextIfItFitsTheType) {
  EXPECT_EQ(utils::parse_integer<int>("+12"), 12);
  EXPECT_EQ(utils::parse_integer<int>("-2147483648"), -2147483647 - 1);
  EXPECT_EQ(utils::parse_integer<int>("2147483648"), std::nullopt);
  EXPECT_EQ(utils::parse_integer<long long>("2147483648"), 2147483648LL);
  for (const char* text : {"", "+-1", "1.", "x"}) {
    EXPECT_EQ(utils::parse_integer<int>(text), std::nullopt) << text;
  }
}

TEST(QuotedStart, IsPrintableAndShort) {
  EXPECT_EQ(utils::quoted_start("a\tb"), "\"a?b\"");
  EXPECT_EQ(utils::quoted_start(std::string(41, 'x')), "\"" + std::string(40, 'x') + "...\"");
}

}  // namespace
