#include "export/TableReader.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/Tool.hpp"
#include "tools/mesh/message_of.hpp"
#include "utils/stop.hpp"

namespace {

using exports::TableReader;

class Table : public testing::Test {
 protected:
  /// What the reader says of a table of two columns; empty if it accepts it.
  std::string error_of(const std::string& text,
                       TableReader::Missing missing = TableReader::Missing::refused) {
    const std::string name = folder_.write("table.txt", text);
    try {
      TableReader table(name, missing);
      std::vector<double> row(2);
      while (table.next_row(row)) rows_.push_back(row);
    } catch (const tools::Error& error) {
      const std::string message = error.what();
      const std::string start = "Error in file " + name + ", ";
      EXPECT_EQ(message.substr(0, start.size()), start);
      return message.substr(start.size());
    }
    return "";
  }

  support::TemporaryFolder folder_;
  std::vector<std::vector<double>> rows_;
};

}  // namespace

TEST_F(Table, NumbersAreSeparatedByBlanksAndTabs) {
  EXPECT_EQ(error_of("1\t2\n 3  -4.5e-3\t\t\r\n1e-400 0\n"), "");
  EXPECT_EQ(rows_, (std::vector<std::vector<double>>{{1, 2}, {3, -0.0045}, {0, 0}}));
}

TEST_F(Table, LinesThatCrossTheBufferAreWhole) {
  std::string text;
  for (int i = 0; i < 300000; ++i) text += std::to_string(i) + "\t" + std::to_string(-i) + "\n";
  EXPECT_EQ(error_of(text), "");
  ASSERT_EQ(rows_.size(), 300000u);
  for (int i = 0; i < 300000; ++i) {
    ASSERT_EQ(rows_[static_cast<std::size_t>(i)], (std::vector<double>{1.0 * i, -1.0 * i}));
  }
}

TEST_F(Table, ErrorsNameLineColumnWhatWasFoundAndWhatIsExpected) {
  EXPECT_EQ(error_of("1 2\n3\n"),
            "line 2, column 2: found the end of the line, expected 2 numbers.");
  EXPECT_EQ(error_of("1 2\n3 4 5\n"), "line 2, column 3: found \"5\", expected only 2 numbers.");
  EXPECT_EQ(error_of("1 x2\n"), "line 1, column 2: found \"x2\", expected a finite number.");
  EXPECT_EQ(error_of("1 2x\n"), "line 1, column 2: found \"2x\", expected a finite number.");
  EXPECT_EQ(error_of("1 inf\n"), "line 1, column 2: found \"inf\", expected a finite number.");
  EXPECT_EQ(error_of("1 nan\n"), "line 1, column 2: found \"nan\", expected a finite number.");
  EXPECT_EQ(error_of("1e999 0\n"), "line 1, column 1: found \"1e999\", expected a finite number.");
  EXPECT_EQ(error_of("1 2\n1 2"),
            "line 2: found the end of the file, expected the end of the line; the file is cut "
            "off.");
  EXPECT_EQ(error_of(std::string(3 << 20, '7')),
            "line 1: found no line end within a million bytes, expected a table of numbers.");
}

TEST_F(Table, NanIsAcceptedWhereItStandsForAMissingValue) {
  EXPECT_EQ(error_of("1 nan\n", TableReader::Missing::allowed), "");
  ASSERT_EQ(rows_.size(), 1u);
  EXPECT_TRUE(std::isnan(rows_[0][1]));
  EXPECT_NE(error_of("1 inf\n", TableReader::Missing::allowed), "");
}

TEST_F(Table, AnErrorOfTheSystemIsNoEnd) {
  TableReader table("/proc/self/mem");  // no memory is mapped where reading it begins
  std::vector<double> row(2);
  EXPECT_EQ(support::message_of([&] { table.next_row(row); }),
            "The file /proc/self/mem couldn't be read to its end: the system reports an error.");
}

TEST_F(Table, AFileThatIsCutOffWhileItIsReadHasNoEnd) {
  std::string text;
  for (int i = 0; i < 400'000; ++i) text += "1 2\n";  // more than the reader holds
  const std::string name = folder_.write("table.txt", text);
  TableReader table(name);
  std::vector<double> row(2);
  EXPECT_TRUE(table.next_row(row));
  std::filesystem::resize_file(name, text.size() - 4);
  EXPECT_EQ(support::message_of([&] {
              while (table.next_row(row)) continue;
            }),
            "The file " + name +
                " couldn't be read to its end: it has become shorter since it was opened.");
}

TEST_F(Table, AFileThatGrowsWhileItIsReadIsRead) {
  const std::string name = folder_.write("table.txt", "1 2\n");
  TableReader table(name);
  std::ofstream(name, std::ios::app) << "3 4\n";
  std::vector<double> row(2);
  EXPECT_TRUE(table.next_row(row));
  EXPECT_TRUE(table.next_row(row));
  EXPECT_FALSE(table.next_row(row));
}

TEST_F(Table, AFileThatIsNotThereIsRefused) {
  EXPECT_THROW(TableReader(folder_.file("none.txt")), tools::Error);
  EXPECT_THROW(TableReader(folder_.path()), tools::Error);
}
