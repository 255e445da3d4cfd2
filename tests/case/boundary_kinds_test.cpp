#include "case/boundary_kinds.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include "support/manual_table.hpp"

namespace {

using cases::BoundaryKind;
using Argument = BoundaryKind::Argument;

std::string further_value(const BoundaryKind& kind) {
  const std::string unit = kind.imposes_discharge() ? "m2/s" : "m";
  switch (kind.argument) {
    case Argument::none:
      return "";
    case Argument::value:
      return unit;
    case Argument::series:
      return "name of a series file (" + unit + ")";
  }
  return "";
}

}  // namespace

TEST(BoundaryKinds, HaveACodeANameAndAnEntryInTheBooksOfTheirOwn) {
  std::set<int> codes = {edge_code::interior};
  std::set<std::string> names, books;
  for (const BoundaryKind& kind : cases::boundary_kinds) {
    EXPECT_TRUE(codes.insert(kind.code).second) << kind.name;
    EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
    EXPECT_TRUE(books.insert(kind.books).second) << kind.name;
    EXPECT_EQ(kind.argument == Argument::none, kind.imposes == BoundaryKind::Quantity::none);
  }
}

TEST(BoundaryKinds, AreFoundByCodeAndByName) {
  EXPECT_STREQ(cases::boundary_kind(-33)->name, "hydrograph");
  EXPECT_EQ(cases::boundary_kind("level")->code, -4);
  EXPECT_EQ(cases::boundary_kind(-1), nullptr);
  EXPECT_EQ(cases::boundary_kind("Wall"), nullptr);
}

TEST(BoundaryKinds, OnlyTheModelOfWaterHasSeries) {
  for (const BoundaryKind& kind : cases::boundary_kinds) {
    EXPECT_EQ(cases::boundary_kind(kind.code, false), &kind);
    EXPECT_EQ(cases::boundary_kind(kind.code, true), kind.has_series() ? nullptr : &kind);
  }
}

TEST(BoundaryKinds, AreListedInTheManualPageOfTheImport) {
  std::ifstream file(std::string(QUILLMERE_SOURCE_DIR) + "/tools/mesh/quillmere-mesh.1");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  const std::size_t begin = page.find(".BI \\-\\-boundary");
  ASSERT_NE(begin, std::string::npos);
  const std::string paragraph = page.substr(begin, page.find(".TP", begin) - begin);
  for (const BoundaryKind& kind : cases::boundary_kinds) {
    const std::string form = kind.name + std::string(kind.argument == Argument::none ? "" : ":");
    EXPECT_TRUE(std::regex_search(paragraph, std::regex("\n\\.BI?R? " + form + "( |\n)"))) << form;
  }
}

TEST(BoundaryKinds, AreListedInTheManualAsInTheTable) {
  const auto rows = support::manual_rows(
      "| code | boundary | with `import` | further value | with sediments | in the report |");
  ASSERT_EQ(rows.size(), cases::boundary_kinds.size() + 1);
  EXPECT_EQ(rows[0], support::table_row({"-1", "none: an interior edge", "", "", "yes", ""}));
  for (std::size_t i = 0; i < cases::boundary_kinds.size(); ++i) {
    const BoundaryKind& kind = cases::boundary_kinds[i];
    EXPECT_EQ(rows[i + 1], support::table_row({std::to_string(kind.code), kind.meaning, kind.name,
                                               further_value(kind),
                                               kind.with_sediments ? "yes" : "no", kind.books}));
  }
}
