#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "support/Case.hpp"
#include "support/CommaLocale.hpp"
#include "support/QuietRun.hpp"
#include "support/TemporaryFolder.hpp"

namespace {

namespace fs = std::filesystem;

/// Every file of a folder and below, by name, after a run of the case there.
std::map<std::string, std::string> files_of_run(const support::TemporaryFolder& folder) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  support::QuietRun run;
  Domain("data.json", run.settings).Update([] { return true; });
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(".")) {
    const std::string name = entry.path().string();
    if (entry.is_regular_file()) files[name] = folder.read(name);
  }
  fs::current_path(before);
  return files;
}

TEST(RunInALocaleWithADecimalComma, WritesTheSameFiles) {
  const support::TemporaryFolder here, there;
  support::full_case().write(here);
  support::full_case().write(there);
  const auto expected = files_of_run(here);
  ASSERT_TRUE(expected.contains("./out/pic_0_50.txt"));
  const support::CommaLocale locale;
  EXPECT_EQ(files_of_run(there), expected);
}

}  // namespace
