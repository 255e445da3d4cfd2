#include "utils/TextScanner.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "utils/scan.hpp"

namespace {

using testing::ExitedWithCode;

TEST(TextScanner, TakesAnyWhiteSpaceForASeparator) {
  const support::TemporaryFolder folder;
  utils::TextScanner scanner(folder.write("values.txt", " \t\r\n\v\f1\t2\r\n3\v4\f5 word\n"));
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(scanner.read_integer("value"), i);
  EXPECT_EQ(scanner.read_word("name"), "word");
}

TEST(TextScanner, ReadsWordsOfAnyLength) {
  const support::TemporaryFolder folder;
  const std::string word(100000, 'w');
  const std::string longer_word(3 << 20, 'v');
  utils::TextScanner scanner(folder.write("values.txt", word + " " + longer_word + " \"a,b\" end"));
  EXPECT_EQ(scanner.read_word("name"), word);
  EXPECT_EQ(scanner.read_word("name"), longer_word);
  EXPECT_EQ(scanner.read_word("name"), "\"a,b\"");
  EXPECT_EQ(scanner.read_word("name"), "end");
}

TEST(TextScanner, ReadsDecimalsOfAnyLengthAsTheNearestNumber) {
  const support::TemporaryFolder folder;
  std::mt19937 random(17);
  std::string text;
  std::vector<double> expected;
  for (int i = 0; i < 100000; ++i) {
    std::string token = random() % 2 == 0 ? "-" : "";
    for (int k = static_cast<int>(random() % 18); k >= 0; --k) {
      token += static_cast<char>('0' + random() % 10);
    }
    if (random() % 4 != 0) token += '.';
    for (int k = static_cast<int>(random() % 18); k >= 0; --k) {
      token += static_cast<char>('0' + random() % 10);
    }
    text += token + (random() % 2 == 0 ? "\n" : " \t");
    expected.push_back(std::strtod(token.c_str(), nullptr));
  }
  utils::TextScanner scanner(folder.write("values.txt", text));
  for (const double value : expected) {
    const double read = scanner.read_number("value");
    ASSERT_EQ(read, value);
    ASSERT_EQ(std::signbit(read), std::signbit(value));
  }
}

TEST(TextScanner, ReadsAFileLargerThanAMegabyte) {
  const support::TemporaryFolder folder;
  std::string text;
  constexpr int count = 400000;
  for (int i = 0; i < count; ++i) text += std::to_string(i) + "\n";
  ASSERT_GT(text.size(), 2U << 20);
  utils::TextScanner scanner(folder.write("values.txt", text));
  for (int i = 0; i < count; ++i) ASSERT_EQ(scanner.read_integer("value"), i);
}

TEST(TextScanner, ReadsIntegersOfAnyLength) {
  const support::TemporaryFolder folder;
  std::mt19937 random(23);
  std::string text;
  std::vector<int> expected;
  for (int i = 0; i < 100000; ++i) {
    const int magnitude = static_cast<int>(random() & 0x7FFFFFFF) >> random() % 31;
    expected.push_back(random() % 2 == 0 ? -magnitude : magnitude);
    text += std::to_string(expected.back()) + (random() % 2 == 0 ? "\n" : " \t");
  }
  utils::TextScanner scanner(folder.write("values.txt", text));
  for (const int value : expected) ASSERT_EQ(scanner.read_integer("value"), value);
}

TEST(TextScanner, SkipsMegabytesOfWhiteSpace) {
  const support::TemporaryFolder folder;
  utils::TextScanner scanner(
      folder.write("values.txt", "1" + std::string(3 << 20, '\n') + "2.5" + std::string(99, ' ')));
  EXPECT_EQ(scanner.read_integer("value"), 1);
  EXPECT_EQ(scanner.read_number("value"), 2.5);
}

TEST(TextScanner, ReadsWhatComesThroughAPipe) {
  const support::TemporaryFolder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  constexpr int count = 200000;
  std::thread writer([&] {
    std::ofstream pipe(path);
    pipe << count << '\n';
    for (int i = 0; i < count; ++i) pipe << i << '\n';
  });
  utils::TextScanner scanner(path);
  writer.join();
  EXPECT_EQ(scanner.read_count("records", 1), count);
  for (int i = 0; i < count; ++i) ASSERT_EQ(scanner.read_integer("value"), i);
}

TEST(TextScannerDeathTest, NamesTheLineOfALargeFile) {
  const support::TemporaryFolder folder;
  constexpr int count = 400000;
  std::string text;
  for (int i = 0; i < count; ++i) text += std::to_string(i) + "\n";
  const auto read = [&](const std::string& path) {
    utils::TextScanner scanner(path);
    for (int i = 0; i <= count; ++i) scanner.read_integer("value");
  };
  EXPECT_FATAL(read(folder.write("word.txt", text + "\nword\n")), 255,
               "word\\.txt, line 400002, header, value: found \"word\", expected an integer");
  EXPECT_FATAL(read(folder.write("short.txt", text)), 255,
               "short\\.txt, line 400001, header, value: found the end of the file");
}

TEST(TextScannerDeathTest, NamesFileLineRecordAndField) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("depths.txt", "1 2\n3 4\n\nfive 6\n");
  const auto read = [&] {
    utils::TextScanner scanner(path);
    for (int i = 0; i < 4; ++i) {
      scanner.begin_record("cell", i, 4);
      scanner.read_number("depth");
      scanner.read_number("level");
    }
  };
  EXPECT_FATAL(read(), 255,
               "^Error in file .*depths\\.txt, line 4, cell 2 \\(of 0 to 3\\), depth: found "
               "\"five\", expected a finite number\\.\n$");
}

TEST(TextScannerDeathTest, NamesTheEndOfTheFileWhenATokenIsMissing) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("short.txt", "1\n2\n");
  const auto read = [&](auto method) {
    utils::TextScanner scanner(path);
    scanner.begin_record("cell", 7, 9);
    scanner.read_integer("first");
    scanner.read_integer("second");
    method(scanner);
  };
  EXPECT_FATAL(
      read([](utils::TextScanner& s) { s.read_number("third"); }), 255,
      "cell 7 \\(of 0 to 8\\), third: found the end of the file, expected a finite number");
  EXPECT_FATAL(read([](utils::TextScanner& s) { s.read_integer("third"); }), 255,
               "third: found the end of the file, expected an integer");
  EXPECT_FATAL(read([](utils::TextScanner& s) { s.read_word("third"); }), 255,
               "third: found the end of the file, expected a word");
  EXPECT_FATAL(read([](utils::TextScanner& s) { s.read_index("third", 5); }), 255,
               "third: found the end of the file, expected an integer");
}

TEST(TextScannerDeathTest, RefusesAnEmptyFile) {
  const support::TemporaryFolder folder;
  EXPECT_FATAL(read_integer_from(folder.write("empty.txt", "")), 255,
               "empty\\.txt, line 1, header, value: found the end of the file");
}

TEST(TextScannerDeathTest, ShowsOnlyThePrintableStartOfALongToken) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("long.txt", "a\x01" + std::string(1000, 'b'));
  EXPECT_FATAL(read_number_from(path), 255, "found \"a\\?b{38}\\.\\.\\.\", expected");
}

TEST(TextScanner, AcceptsEveryIndexBelowTheLimit) {
  const support::TemporaryFolder folder;
  utils::TextScanner scanner(folder.write("indices.txt", "0 2"));
  EXPECT_EQ(scanner.read_index("cell", 3), 0);
  EXPECT_EQ(scanner.read_index("cell", 3), 2);
}

TEST(TextScannerDeathTest, RefusesAnIndexOutsideItsRange) {
  const support::TemporaryFolder folder;
  for (const std::string token : {"3", "-1", "2147483647", "-2147483648"}) {
    const std::string path = folder.write("indices.txt", token);
    EXPECT_FATAL(utils::TextScanner(path).read_index("cell", 3), 255,
                 "cell: found \"" + token + "\", expected an index from 0 to 2\\.\n$");
  }
  const std::string path = folder.write("indices.txt", "0");
  EXPECT_FATAL(utils::TextScanner(path).read_index("cell", 0), 255,
               "found \"0\", expected no index: there is nothing to point to");
}

TEST(TextScanner, AcceptsTheLargestCountThatTheFileCanHold) {
  const support::TemporaryFolder folder;
  EXPECT_EQ(utils::TextScanner(folder.write("a.txt", "2 1 2 3 4")).read_count("records", 2), 2);
  EXPECT_EQ(utils::TextScanner(folder.write("b.txt", "0")).read_count("records", 2), 0);
  EXPECT_EQ(utils::TextScanner(folder.write("c.txt", "1 5 6 7")).read_count("records", 1), 1);
  std::string text = "1000000";
  for (int i = 0; i < 1000000; ++i) text += " 1";
  EXPECT_EQ(utils::TextScanner(folder.write("d.txt", text)).read_count("records", 1), 1000000);
}

TEST(TextScannerDeathTest, RefusesACountThatIsNegativeOrThatTheFileCannotHold) {
  const support::TemporaryFolder folder;
  for (const std::string token : {"3", "-1", "2000000000", "2147483647", "-2147483648"}) {
    const std::string path = folder.write("counts.txt", token + " 1 2 3 4");
    EXPECT_FATAL(utils::TextScanner(path).read_count("records", 2), 255,
                 "records: found \"" + token + "\", expected a count from 0 to 2, ");
  }
}

}  // namespace
