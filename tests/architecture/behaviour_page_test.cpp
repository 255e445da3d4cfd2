// docs/behaviour.md and the tags in the code tell the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "architecture/source_files.hpp"

namespace {

namespace fs = std::filesystem;

const fs::path root = QUILLMERE_SOURCE_DIR;

std::string page() { return text_of(root / "docs" / "behaviour.md"); }

}  // namespace

TEST(BehaviourPage, NamesEveryFileWithAnIntendedOddity) {
  const std::string text = page();
  int files = 0;
  for (const fs::path& file : files_below(root / "src")) {
    if (text_of(file).find("Intended:") == std::string::npos) continue;
    ++files;
    const std::string name = fs::relative(file, root / "src").string();
    EXPECT_NE(text.find("`" + name + "`"), std::string::npos) << name;
  }
  EXPECT_GT(files, 10);
}

TEST(BehaviourPage, NamesFilesThatHaveOne) {
  for (const std::string& name : matches(page(), std::regex("`(\\w+/\\w+\\.[ch]pp)`"))) {
    EXPECT_NE(text_of(root / "src" / name).find("Intended:"), std::string::npos) << name;
  }
}

TEST(BehaviourPage, NamesTestsThatExist) {
  std::string tests;
  for (const fs::path& file : files_below(root / "tests")) tests += text_of(file);
  const auto named = matches(page(), std::regex("`(\\w+\\.\\w+)`"));
  const std::regex name("(\\w+)\\.(\\w+)");
  int found = 0;
  for (const std::string& test : named) {
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(test, parts, name));
    const std::regex definition("TEST(_F|_P)?\\(" + parts[1].str() + ",\\s*" + parts[2].str() +
                                "\\)");
    EXPECT_TRUE(std::regex_search(tests, definition)) << test;
    ++found;
  }
  EXPECT_GT(found, 20);
}
