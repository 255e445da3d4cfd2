#include "case/keys.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "case/nearest_key.hpp"
#include "support/manual_table.hpp"

namespace {

using cases::Key;
using cases::KeyKind;
using cases::keys;
using Use = Key::Use;

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
  const auto rows = support::manual_rows("| key | kind | default | unit | meaning |");
  ASSERT_EQ(rows.size(), keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(rows[i],
              support::table_row({keys[i].path, name_of(keys[i].kind), default_in_manual(keys[i]),
                                  keys[i].unit, keys[i].meaning}));
  }
}

}  // namespace
