#include "mesh/ForeignScanner.hpp"

#include <gtest/gtest.h>

#include <string>

#include "support/TemporaryFolder.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::ForeignScanner;
using support::message_of;

/// The scanner holds a piece of this many bytes or a little more: whatever follows them stands
/// across two pieces for some of the lengths that a test tries.
constexpr std::size_t piece = std::size_t{1} << 18;

/// A file whose text begins around the end of the first piece, behind blanks.
class AcrossPieces : public testing::TestWithParam<int> {
 protected:
  ForeignScanner scan(const std::string& text) {
    const std::size_t blanks = piece - static_cast<std::size_t>(GetParam());
    return ForeignScanner(folder.write("f.txt", std::string(blanks, ' ') + text));
  }
  support::TemporaryFolder folder;
};

TEST_P(AcrossPieces, ReadsWordsLinesAndTextsInQuotes) {
  ForeignScanner in = scan("card 12345678901 \"a \xC3\xA4 b\" rest of it\nnext \"c\"\n-2.5  \n7");
  EXPECT_EQ(in.word("card"), "card");
  EXPECT_EQ(in.integer("number"), 12345678901);
  EXPECT_EQ(in.quoted_text("name"), "a \xC3\xA4 b");
  EXPECT_FALSE(in.at_end_of_line());
  in.skip_line();
  EXPECT_EQ(in.quoted_text("name"), "next");
  EXPECT_EQ(in.quoted_text("name"), "c");
  EXPECT_TRUE(in.at_end_of_line());
  EXPECT_EQ(in.number("value"), -2.5);
  EXPECT_TRUE(in.at_end_of_line());
  EXPECT_FALSE(in.at_end());
  EXPECT_EQ(in.integer("last"), 7);
  EXPECT_TRUE(in.at_end_of_line());
  EXPECT_TRUE(in.at_end());
}

TEST_P(AcrossPieces, FindsTheEndOfASection) {
  ForeignScanner in = scan("$Foo\n1 2 $EndFoo\n$EndFoo\n3");
  EXPECT_EQ(in.word("section"), "$Foo");
  in.skip_past("$EndFoo");
  EXPECT_EQ(in.integer("number"), 3);
}

TEST_P(AcrossPieces, ReadsBinaryValuesAndTellsTheirPlace) {
  const int numbers[] = {7, -1};
  ForeignScanner in =
      scan("x\n" + std::string(reinterpret_cast<const char*>(numbers), sizeof numbers) + "ab");
  EXPECT_EQ(in.word("word"), "x");
  in.skip_line();
  EXPECT_EQ(in.raw<int>("number"), 7);
  EXPECT_EQ(in.raw<int>("number"), -1);
  const std::size_t begin = piece - static_cast<std::size_t>(GetParam()) + 2 + 4;
  EXPECT_EQ(message_of([&] { in.refuse("number", "more than 0"); }),
            in.path() + ", byte " + std::to_string(begin) +
                ": number: found other bytes, expected more than 0.");
  EXPECT_EQ(in.size_of_rest(), 2U);
  EXPECT_EQ(message_of([&] { in.raw<double>("x"); }),
            in.path() + ", byte " + std::to_string(begin + 4) +
                ": x: found other bytes, expected more bytes: the file is cut off.");
}

TEST_P(AcrossPieces, NamesTheLineOfWhatIsWrong) {
  ForeignScanner in = scan("1 2\n3 four\n");
  EXPECT_EQ(in.integer("a"), 1);
  EXPECT_EQ(in.integer("b"), 2);
  EXPECT_EQ(in.integer("c"), 3);
  EXPECT_EQ(message_of([&] { in.integer("d"); }),
            in.path() + ", line 2: d: found \"four\", expected an integer.");
  EXPECT_EQ(message_of([&] { in.word("e"); }),
            in.path() + ", line 3: e: found the end of the file, expected a further value.");
}

INSTANTIATE_TEST_SUITE_P(ForeignScanner, AcrossPieces, testing::Range(0, 40));

TEST(ForeignScanner, SaysWhatIsNotClosed) {
  const support::TemporaryFolder folder;
  ForeignScanner open_quote(folder.write("a.txt", "\"name\n\""));
  EXPECT_TRUE(message_of([&] {
                open_quote.quoted_text("name");
              }).ends_with("line 1: name: found \"\"\", expected a closing quote on this line."));
  ForeignScanner open_section(folder.write("b.txt", "$Foo\n1 2\n"));
  open_section.word("section");
  EXPECT_TRUE(message_of([&] { open_section.skip_past("$EndFoo"); })
                  .ends_with("line 3: section: found the end of the file, expected $EndFoo before "
                             "it: the file is cut off."));
}

}  // namespace
