#include "case/CollectingSource.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "case/CollectedMessages.hpp"
#include "case/mesh_records.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "utils/stop.hpp"

namespace {

using cases::Number;

class CollectingSourceTest : public testing::Test {
 protected:

  cases::CollectingSource source(const std::string& text) {
    return {folder.write("file.txt", text), messages};
  }
  /// What was told, without the name of the file.
  std::vector<std::string> errors() const {
    std::vector<std::string> texts;
    const std::string opening = "Error in file " + folder.file("file.txt") + ", ";
    for (const std::string& error : messages.errors) {
      EXPECT_TRUE(support::starts_with(error, opening)) << error;
      texts.push_back(error.substr(opening.size()));
    }
    return texts;
  }

  support::TemporaryFolder folder;
  CollectedMessages messages;
};

TEST_F(CollectingSourceTest, TellsWhatIsRefusedAndGoesOnBehindIt) {
  cases::CollectingSource file = source("1 x 2.5 y 7");
  EXPECT_EQ(file.read_integer("first"), 1);
  EXPECT_TRUE(std::isnan(file.read_number("second")));
  EXPECT_EQ(file.read_number("third"), 2.5);
  EXPECT_EQ(file.read_index("fourth", 8), -1);
  EXPECT_EQ(file.read_index("fifth", 8), 7);
  EXPECT_TRUE(file.goes_on());
  EXPECT_FALSE(file.is_well());
  EXPECT_EQ(errors(), (std::vector<std::string>{
                          "line 1, header, second: found \"x\", expected a finite number.",
                          "line 1, header, fourth: found \"y\", expected an integer."}));
}

TEST_F(CollectingSourceTest, ReadsALongFileBehindARefusalAsIfThereWereNone) {
  constexpr int count = 300'000;
  std::string text = "x\n";
  for (int i = 1; i < count; ++i) text += std::to_string(i) + (i == count / 2 ? " y\n" : "\n");
  cases::CollectingSource file = source(text);
  int wrong = 0;
  for (int i = 0; i <= count; ++i) {
    const int expected = i == 0 || i == count / 2 + 1 ? -1 : i - (i > count / 2);
    wrong += file.read_integer("value") != expected;
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(errors(), (std::vector<std::string>{
                          "line 1, header, value: found \"x\", expected an integer.",
                          "line 150001, header, value: found \"y\", expected an integer."}));
  file.read_integer("value");
  EXPECT_FALSE(file.goes_on());
}

TEST_F(CollectingSourceTest, TellsOnceThatTheFileEnds) {
  cases::CollectingSource file = source("1");
  file.read_integer("first");
  EXPECT_TRUE(std::isnan(file.read_number("second")));
  EXPECT_EQ(file.read_word("third"), "");
  EXPECT_FALSE(file.goes_on());
  EXPECT_EQ(messages.errors.size(), 1u);
}

TEST_F(CollectingSourceTest, GivesUpWithoutACountAndAfterTenRefusals) {
  cases::CollectingSource count = source("-1 2");
  EXPECT_EQ(count.read_count("number of records", 1), 0);
  EXPECT_FALSE(count.goes_on());
  messages.errors.clear();
  cases::CollectingSource values = source("a b c d e f g h i j k");
  for (int i = 0; i < 11; ++i) values.read_number("value");
  ASSERT_EQ(messages.errors.size(), 11u);
  EXPECT_TRUE(messages.errors.back().ends_with(": the rest of the file is not read"));
}

TEST_F(CollectingSourceTest, AFileThatCannotBeOpenedHasNothingToRead) {
  cases::CollectingSource file(folder.file("is_not_there.txt"), messages);
  EXPECT_FALSE(file.goes_on());
  EXPECT_FALSE(file.is_well());
  EXPECT_EQ(messages.errors, (std::vector<std::string>{"Fatal error. Impossible to open file " +
                                                       folder.file("is_not_there.txt") + "."}));
}

TEST_F(CollectingSourceTest, ACellWithoutItsNumberOfNodesEndsTheReading) {
  cases::CollectingSource file = source("3\n3 0 1 2\n3 0 9 1\nx 0 1 2\n");
  cases::Mesh mesh;
  EXPECT_EQ(cases::read_cell_records(file, 3, mesh, [](Number) {}), 3);
  EXPECT_EQ(errors(),
            (std::vector<std::string>{
                "line 3, cell 1 (of 0 to 2), node: found \"9\", expected an index from 0 to "
                "2.",
                "line 4, cell 2 (of 0 to 2), number of nodes: found \"x\", expected an "
                "integer."}));
}

TEST_F(CollectingSourceTest, OfAnEdgeThatIsNotWellTheValuesAreNotCompared) {
  cases::CollectingSource file = source("3\n0 -1 0 1 -1\n9 -1 0 1 -1\n0 -1 0 1 -7\n");
  std::vector<int> codes;
  cases::Mesh mesh;
  cases::read_edge_records(
      file, 3, 2, mesh, [&](int code) { codes.push_back(code); }, [](const cases::EdgeRecord&) {});
  EXPECT_EQ(codes, (std::vector<int>{-7}));
  ASSERT_EQ(messages.errors.size(), 2u);
  EXPECT_TRUE(support::contains(errors()[0], "edge 0 (of 0 to 2), boundary code: found \"-1\""));
  EXPECT_TRUE(support::contains(errors()[1], "edge 1 (of 0 to 2), left cell: found \"9\""));
}

}  // namespace
