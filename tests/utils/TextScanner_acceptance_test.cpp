// The scanner takes the same tokens for values, and the same values for them, as formatted stream
// extraction.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "utils/TextScanner.hpp"
#include "utils/scan.hpp"

namespace {

using testing::ExitedWithCode;

/// Whether formatted extraction takes the whole token as a value, and that value.
template <class T>
bool extract(const std::string& token, T& value) {
  std::istringstream stream(token);
  return stream >> value && stream.peek() == std::istringstream::traits_type::eof();
}

bool extract_finite(const std::string& token, double& value) {
  return extract(token, value) && std::isfinite(value);
}

std::uint64_t bits(double value) {
  std::uint64_t pattern = 0;
  std::memcpy(&pattern, &value, sizeof value);
  return pattern;
}

/// Every text of one to four of these characters.
std::vector<std::string> short_tokens() {
  const std::string characters = "+-.059eEx";
  std::vector<std::string> tokens;
  std::size_t begin = 0;
  tokens.emplace_back();
  for (int length = 1; length <= 4; ++length) {
    const std::size_t end = tokens.size();
    for (; begin < end; ++begin) {
      for (const char c : characters) tokens.push_back(tokens[begin] + c);
    }
  }
  tokens.erase(tokens.begin());
  return tokens;
}

std::vector<std::string> long_numbers() {
  std::vector<std::string> tokens = {
      "+5",
      ".5",
      "5.",
      "-.5",
      "+.5",
      "-5.",
      "1e5",
      "1E5",
      "1e+5",
      "1e-5",
      "1.e5",
      ".5e1",
      "-0",
      "0",
      "00012.5",
      "1e-400",
      "-1e-400",
      "4.9e-324",
      "2.2250738585072011e-308",
      "1e-320",
      "1.7976931348623157e308",
      "9007199254740993",
      "0.1",
      "123456789012345678901234567890",
      "2.5000000000000000000000000000000000000000000000000000000000000001",
      "0." + std::string(400, '0') + "1",
      "1" + std::string(300, '0'),
      std::string(400, '0') + "7"};
  std::mt19937_64 random(3);
  std::uniform_int_distribution<int> digit(0, 9);
  std::uniform_int_distribution<int> exponent(-330, 307);
  for (int i = 0; i < 20000; ++i) {
    std::string token = i % 2 == 0 ? "-" : "";
    for (int k = 0; k <= i % 20; ++k) token += static_cast<char>('0' + digit(random));
    token += ".";
    for (int k = 0; k <= i % 5; ++k) token += static_cast<char>('0' + digit(random));
    const int power = exponent(random) - i % 20;
    tokens.push_back(i % 3 == 0 ? token : token + "e" + std::to_string(power));
  }
  return tokens;
}

std::string joined(const std::vector<std::string>& tokens) {
  std::string text;
  for (const std::string& token : tokens) text += token + "\n";
  return text;
}

TEST(TextScanner, ReadsNumbersAsFormattedExtractionDoes) {
  std::vector<std::string> accepted;
  std::vector<double> expected;
  std::vector<std::string> candidates = short_tokens();
  for (const std::string& token : long_numbers()) candidates.push_back(token);
  for (const std::string& token : candidates) {
    double value = 0.0;
    if (!extract_finite(token, value)) continue;
    accepted.push_back(token);
    expected.push_back(value);
  }
  ASSERT_GT(accepted.size(), 20000U);
  const support::TemporaryFolder folder;
  utils::TextScanner scanner(folder.write("numbers.txt", joined(accepted)));
  for (std::size_t i = 0; i < accepted.size(); ++i) {
    ASSERT_EQ(bits(scanner.read_number("value")), bits(expected[i])) << accepted[i];
  }
}

TEST(TextScanner, ReadsANumberTooSmallForADoubleAsZero) {
  const support::TemporaryFolder folder;
  utils::TextScanner scanner(folder.write("numbers.txt", "1e-400 -1e-400"));
  EXPECT_EQ(bits(scanner.read_number("value")), bits(0.0));
  EXPECT_EQ(bits(scanner.read_number("value")), bits(-0.0));
}

TEST(TextScanner, ReadsIntegersAsFormattedExtractionDoes) {
  std::vector<std::string> accepted;
  std::vector<int> expected;
  std::vector<std::string> candidates = short_tokens();
  for (const char* token : {"2147483647", "-2147483648", "+2147483647", "0000000000000000012"}) {
    candidates.emplace_back(token);
  }
  for (const std::string& token : candidates) {
    int value = 0;
    if (!extract(token, value)) continue;
    accepted.push_back(token);
    expected.push_back(value);
  }
  ASSERT_GT(accepted.size(), 200U);
  const support::TemporaryFolder folder;
  utils::TextScanner scanner(folder.write("integers.txt", joined(accepted)));
  for (std::size_t i = 0; i < accepted.size(); ++i) {
    ASSERT_EQ(scanner.read_integer("value"), expected[i]) << accepted[i];
  }
}

TEST(TextScannerDeathTest, RefusesWhatIsNoFiniteNumber) {
  const support::TemporaryFolder folder;
  for (const std::string token :
       {"abc",  "1,5",      "1e999", "-1e999", "nan",   "-nan", "NAN", "inf",
        "-inf", "Infinity", "0x10",  "0x1p3",  "1e",    "1e+",  "e5",  ".",
        "+",    "-",        "+-5",   "-+5",    "++5",   "--5",  "5f",  "1d5",
        "1..5", "1.5.2",    "5-",    "1_000",  "1'000", "#1",   "5;",  "5\xEF\xBB\xBF"}) {
    double value = 0.0;
    ASSERT_FALSE(extract_finite(token, value)) << token;
    const std::string path = folder.write("numbers.txt", token);
    EXPECT_FATAL(
        read_number_from(path), 255,
        "numbers\\.txt, line 1, header, value: found \".*\", expected a finite number\\.\n$")
        << token;
  }
}

TEST(TextScannerDeathTest, RefusesWhateverShortTokenFormattedExtractionRefuses) {
  const support::TemporaryFolder folder;
  const std::vector<std::string> tokens = short_tokens();
  int refused = 0;
  for (std::size_t i = 0; i < tokens.size(); i += i < 90 ? 1 : 67) {
    const std::string path = folder.write("numbers.txt", tokens[i]);
    double value = 0.0;
    if (!extract_finite(tokens[i], value)) {
      EXPECT_FATAL(read_number_from(path), 255, "a finite number") << tokens[i];
      ++refused;
    }
    int integer = 0;
    if (!extract(tokens[i], integer)) {
      EXPECT_FATAL(read_integer_from(path), 255, "an integer") << tokens[i];
      ++refused;
    }
  }
  EXPECT_GT(refused, 200);
}

TEST(TextScannerDeathTest, RefusesWhatIsNoInteger) {
  const support::TemporaryFolder folder;
  for (const std::string token :
       {"3.0", "3.", "1e2", "abc", "0x10", "2147483648", "-2147483649", "99999999999999999999",
        "1,000", "+-3", "++3", "--3", "+", "-", "nan", "3a"}) {
    int value = 0;
    ASSERT_FALSE(extract(token, value)) << token;
    const std::string path = folder.write("integers.txt", token);
    EXPECT_FATAL(read_integer_from(path), 255,
                 "integers\\.txt, line 1, header, value: found \".*\", expected an integer\\.\n$")
        << token;
  }
}

}  // namespace
