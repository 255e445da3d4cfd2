#include "ugrid/ClassicLayout.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace std::string_literals;
using ugrid::Type;

/// Two values per record beside a fixed text of three.
ugrid::Definitions definitions() {
  return {.dimensions = {{"t", 0}, {"cell", 2}},
          .attributes = {{"title", "abcde"}},
          .variables = {{"h", Type::single_precision, {0, 1}, {{"n", 258}}},
                        {"x", Type::double_precision, {1}, {}},
                        {"t", Type::double_precision, {0}, {{"e", 1.0}, {"f", 1.0f}}}}};
}

TEST(ClassicLayout, WritesTheHeaderOfTheFormat) {
  const std::string expected =
      "CDF\2\0\0\0\0"                                              // no records
      "\0\0\0\x0a\0\0\0\2"                                         // two dimensions
      "\0\0\0\1t\0\0\0\0\0\0\0"                                    // one that grows
      "\0\0\0\4cell\0\0\0\2"                                       //
      "\0\0\0\x0c\0\0\0\1"                                         // an attribute of the file
      "\0\0\0\5title\0\0\0\0\0\0\2\0\0\0\5abcde\0\0\0"             //
      "\0\0\0\x0b\0\0\0\3"                                         // three variables
      "\0\0\0\1h\0\0\0\0\0\0\2\0\0\0\0\0\0\0\1"                    // of both dimensions
      "\0\0\0\x0c\0\0\0\1\0\0\0\1n\0\0\0\0\0\0\4\0\0\0\1\0\0\1\2"  // an attribute
      "\0\0\0\5\0\0\0\x8\0\0\0\0\0\0\1\x20"                        // type, bytes, place
      "\0\0\0\1x\0\0\0\0\0\0\1\0\0\0\1"                            //
      "\0\0\0\0\0\0\0\0"                                           // no attributes
      "\0\0\0\6\0\0\0\x10\0\0\0\0\0\0\1\x10"                       //
      "\0\0\0\1t\0\0\0\0\0\0\1\0\0\0\0"                            //
      "\0\0\0\x0c\0\0\0\2"                                         //
      "\0\0\0\1e\0\0\0\0\0\0\6\0\0\0\1\x3f\xf0\0\0\0\0\0\0"        //
      "\0\0\0\1f\0\0\0\0\0\0\5\0\0\0\1\x3f\x80\0\0"                //
      "\0\0\0\6\0\0\0\x8\0\0\0\0\0\0\1\x28"s;
  EXPECT_EQ(ugrid::classic_layout(definitions()).header, expected);
  EXPECT_EQ(expected.size(), 0x110U);
}

TEST(ClassicLayout, PutsTheRecordsBehindWhatDoesNotGrow) {
  const ugrid::ClassicLayout layout = ugrid::classic_layout(definitions());
  EXPECT_EQ(layout.begin_of_records, layout.header.size() + 16);
  EXPECT_EQ(layout.record_size, 16U);
  EXPECT_EQ(layout.place(1, 7), layout.header.size());
  EXPECT_EQ(layout.place(0, 0), layout.begin_of_records);
  EXPECT_EQ(layout.place(2, 3), layout.begin_of_records + 3 * 16 + 8);
  EXPECT_EQ(layout.end_of_record(2), layout.begin_of_records + 32);
}

TEST(ClassicLayout, RefusesAVariableOfMoreThan4GiB) {
  ugrid::Definitions large = definitions();
  large.dimensions[1].length = 0x1fffffff;
  EXPECT_NO_THROW(ugrid::classic_layout(large));
  large.dimensions[1].length = 0x20000000;
  EXPECT_THROW(ugrid::classic_layout(large), std::length_error);
}

TEST(ClassicLayout, FillsCharactersUpToFour) {
  const ugrid::ClassicLayout layout = ugrid::classic_layout(
      {.dimensions = {{"name", 5}},
       .attributes = {},
       .variables = {{"n", Type::character, {0}, {}}, {"m", Type::integer, {}, {}}}});
  EXPECT_EQ(layout.place(1, 0), layout.place(0, 0) + 8);
}

}  // namespace
