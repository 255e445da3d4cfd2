#include "case/keys.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "case/nearest_key.hpp"

namespace {

using cases::Key;
using cases::KeyKind;
using cases::keys;
using Use = Key::Use;

std::string manual() {
  std::ifstream file(std::string(QUILLMERE_SOURCE_DIR) + "/docs/manual.md");
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// The rows of the table below a header, without what makes links and code of a text.
std::vector<std::string> rows_below(const std::string& header) {
  std::istringstream lines(manual());
  std::string line;
  while (std::getline(lines, line) && line != header) {
  }
  std::getline(lines, line);  // the rule below the header
  std::vector<std::string> rows;
  while (std::getline(lines, line) && line.starts_with("|")) {
    line = std::regex_replace(line, std::regex(R"(\[([^\]]+)\]\([^)]*\))"), "$1");
    line = std::regex_replace(line, std::regex("`"), "");
    rows.push_back(std::regex_replace(line, std::regex("\u00b2"), "2"));
  }
  return rows;
}

std::string name_of(KeyKind kind) {
  switch (kind) {
    case KeyKind::text:
      return "text";
    case KeyKind::file:
      return "file";
    case KeyKind::number:
      return "number";
    case KeyKind::point:
      return "two numbers";
    case KeyKind::section:
      return "object";
  }
  return "";
}

std::string default_in_manual(const Key& key) {
  switch (key.use) {
    case Use::always:
      return "required";
    case Use::sediments:
      return "required with Bramsett";
    case Use::with_other:
      return "required with " + std::string(cases::last_name_of(key.other));
    case Use::optional:
      return key.other;
  }
  return "";
}

/// A row of a table, whose empty fields are one space.
std::string row(const std::vector<std::string>& fields) {
  std::string text = "|";
  for (const std::string& field : fields) text += field.empty() ? " |" : " " + field + " |";
  return text;
}

TEST(Keys, StandOnceInTheSectionBeforeThem) {
  std::set<std::string> seen = {""};
  for (const Key& key : keys) {
    EXPECT_TRUE(seen.count(std::string(key.section()))) << key.path;
    EXPECT_TRUE(seen.insert(key.path).second) << key.path;
  }
}

TEST(Keys, NameKeysOfTheirSectionThatTheyNeed) {
  for (const Key& key : keys) {
    if (key.use != Use::with_other) continue;
    const Key* const other = cases::find_key(key.section(), cases::last_name_of(key.other));
    ASSERT_NE(other, nullptr) << key.path;
    EXPECT_STREQ(other->path, key.other);
  }
}

TEST(Keys, AreFoundByTheirSectionAndTheirName) {
  EXPECT_EQ(cases::find_key("model", "name"), &cases::key("model/name"));
  EXPECT_EQ(cases::find_key("", "name"), &cases::key("name"));
  EXPECT_EQ(cases::find_key("", "model/name"), nullptr);
  EXPECT_EQ(cases::find_key("mesh", "Nodes"), nullptr);
}

TEST(Keys, ADefaultIsATextWithTheUnitOfANumber) {
  const Key& depth = cases::key("model/zero depth value");
  EXPECT_EQ(cases::default_of(depth), "0.0001 m");
  EXPECT_EQ(cases::default_number(depth), 0.0001);
  EXPECT_EQ(cases::default_of(cases::key("model/sources/rainfall")), "no rain");
  EXPECT_EQ(cases::default_of(cases::key("model/sources/hyetocells")), "");
  EXPECT_EQ(cases::default_of(cases::key("mesh/origin")), "");
}

TEST(Keys, TheNearestOfTwoAlikeIsThatOfTheSameSection) {
  EXPECT_EQ(cases::nearest_key("", "nam"), &cases::key("name"));
  EXPECT_EQ(cases::nearest_key("model", "nam"), &cases::key("model/name"));
  EXPECT_EQ(cases::nearest_key("mesh", "gauge"), &cases::key("output/gauges"));
  EXPECT_EQ(cases::nearest_key("", "author of this"), nullptr);
}

TEST(Keys, AreListedInTheManualAsInTheTable) {
  const std::vector<std::string> rows = rows_below("| key | kind | default | unit | meaning |");
  ASSERT_EQ(rows.size(), keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(rows[i], row({keys[i].path, name_of(keys[i].kind), default_in_manual(keys[i]),
                            keys[i].unit, keys[i].meaning}));
  }
}

}  // namespace
