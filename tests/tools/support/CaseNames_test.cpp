#include "support/CaseNames.hpp"

#include <gtest/gtest.h>

#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"

namespace {

TEST(CaseNames, ReadBackAsTheyWereWritten) {
  const support::TemporaryFolder folder;
  tools::CaseNames names{{"pier \"3\"", ""}, {"bridge"}, {{"Zufluß", {4, 7}}, {"sea", {}}}};
  folder.write("names.json", tools::text_of(names));
  const tools::CaseNames read = tools::read_case_names(folder.path());
  EXPECT_EQ(read.gauges, names.gauges);
  EXPECT_EQ(read.sections, names.sections);
  EXPECT_EQ(read.boundaries, names.boundaries);
}

TEST(CaseNames, AreNoneWithoutTheirFile) {
  const support::TemporaryFolder folder;
  EXPECT_TRUE(tools::read_case_names(folder.path()).gauges.empty());
}

TEST(CaseNames, ThatAreNotAsManyAsTheThingsAreNone) {
  const std::vector<std::string> names = {"pier", ""};
  EXPECT_EQ(tools::names_of_each(names, 2), names);
  EXPECT_EQ(tools::names_of_each(names, 3), std::vector<std::string>(3));
  EXPECT_EQ(tools::names_of_each(names, 1), std::vector<std::string>(1));
  EXPECT_EQ(tools::names_of_each({}, 0), std::vector<std::string>());
}

TEST(CaseNames, ThatAreMalformedAreRefused) {
  const support::TemporaryFolder folder;
  for (const char* text : {"", "[]", "{\"gauges\": 3}", "{\"sections\": [1]}"}) {
    folder.write("names.json", text);
    EXPECT_THROW(tools::read_case_names(folder.path()), tools::Error) << text;
  }
}

}  // namespace
