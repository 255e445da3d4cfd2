// Who may include whom, and where the flow's arithmetic may stand.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "architecture/source_files.hpp"

namespace {

namespace fs = std::filesystem;

const fs::path source = fs::path(QUILLMERE_SOURCE_DIR) / "src";

/// What each folder may include, itself left out.
const std::map<std::string, std::set<std::string>> allowed_folders = {
    {"physics", {}},
    {"kernels", {"physics"}},
    {"globals", {}},
    {"utils", {}},
    {"case", {"physics", "globals", "utils"}},
    {"engine", {"kernels", "physics", "case"}},
    {"ranks", {"engine", "physics", "case", "utils"}},
    {"model", {"physics", "case", "interfaces", "sources", "globals", "utils"}},
    {"interfaces", {"physics", "case", "model", "globals", "utils"}},
    {"sources", {"physics", "case", "model", "globals", "utils"}},
    {"fields", {"physics", "case", "engine", "model", "ranks", "globals", "utils"}},
    {"ugrid", {"physics", "case", "fields", "utils"}},
    {"output", {"physics", "case", "fields", "ugrid", "utils"}},
    {"report", {"physics", "case", "fields", "utils"}},
    {"checkpoint", {"physics", "case", "fields", "output", "utils"}},
    {"domain", {"physics", "case", "fields", "output", "report", "checkpoint", "utils"}},
    {"library", {"physics", "case", "fields", "quillmere", "utils"}},
    {"main", {"case", "fields", "ranks", "checkpoint", "domain", "report", "utils"}}};

std::string without_comments(const std::string& text) {
  return std::regex_replace(text, std::regex("//[^\n]*"), "");
}

}  // namespace

TEST(Layers, EveryFolderIncludesOnlyWhatStandsBelowIt) {
  const std::regex include("#include \"(\\w+)/");
  int includes = 0;
  for (const fs::path& file : files_below(source)) {
    const std::string folder = fs::relative(file, source).begin()->string();
    ASSERT_TRUE(allowed_folders.count(folder)) << folder << " is not in the table of layers";
    for (const std::string& included : matches(text_of(file), include)) {
      ++includes;
      EXPECT_TRUE(included == folder || allowed_folders.at(folder).count(included))
          << file << " includes " << included << "/";
    }
  }
  EXPECT_GT(includes, 100);
}

TEST(Layers, OnlyTheFieldsAndTheRanksKnowTheEngine) {
  const std::regex include("#include \"(engine/\\w+)");
  for (const fs::path& file : files_below(source)) {
    const fs::path place = fs::relative(file, source);
    const std::string folder = place.begin()->string();
    if (folder == "engine" || folder == "fields" || folder == "ranks") continue;
    EXPECT_TRUE(matches(text_of(file), include).empty()) << file;
  }
}

TEST(Layers, OneFolderKnowsMpi) {
  for (const fs::path& file : files_below(source)) {
    const bool may = fs::relative(file, source).parent_path() == fs::path("ranks") / "mpi";
    EXPECT_EQ(text_of(file).find("<mpi.h>") != std::string::npos && !may, false) << file;
  }
}

TEST(Layers, OneFolderKnowsCuda) {
  const std::regex cuda("cuda_runtime|__global__|__syncthreads|__shared__");
  int files = 0;
  for (const fs::path& file : files_below(source)) {
    if (!std::regex_search(without_comments(text_of(file)), cuda)) continue;
    ++files;
    EXPECT_EQ(fs::relative(file, source).parent_path(), fs::path("engine") / "device") << file;
  }
  EXPECT_GT(files, 0);
}

TEST(Layers, OnlyTheWalkOfTheObjectsKnowsTheGlobals) {
  const std::set<std::string> walk = {"globals", "model", "interfaces", "sources"};
  const std::set<std::string> flow_on_objects = {"ObjectsFlow.cpp", "StepWatch.cpp"};
  for (const fs::path& file : files_below(source)) {
    const std::string folder = fs::relative(file, source).begin()->string();
    const bool is_of_the_flow = folder == "fields" && flow_on_objects.count(file.filename()) > 0;
    if (walk.count(folder) > 0 || is_of_the_flow) continue;
    EXPECT_EQ(text_of(file).find("globals/Globals.hpp"), std::string::npos) << file;
  }
}

TEST(Layers, OnlyTheProgramKnowsTheEnvironmentTheConsoleAndTheSignalsOfItsProcess) {
  const std::regex process("getenv|std::cout|std::cin|interrupting_signal|current_path");
  const std::set<std::string> but_for = {"main", "model", "sources"};  // two given texts in those
  for (const fs::path& file : files_below(source)) {
    const fs::path place = fs::relative(file, source);
    const bool defines_it = place.parent_path() == "utils" && place.stem() == "signals";
    if (but_for.count(place.begin()->string()) > 0 || defines_it) continue;
    EXPECT_FALSE(std::regex_search(without_comments(text_of(file)), process)) << file;
  }
}

TEST(Layers, PhysicsIncludesTheMathematicsLibraryAndNothingElse) {
  const std::set<std::string> harmless = {"cmath", "bit", "cstdint"};
  const std::regex standard_include("#include <(\\w+)>");
  for (const fs::path& file : files_below(source / "physics")) {
    for (const std::string& included : matches(text_of(file), standard_include)) {
      EXPECT_TRUE(harmless.count(included)) << file << " includes " << included;
    }
  }
}

TEST(Layers, FlowArithmeticStandsInPhysicsAlone) {
  const std::regex constant("\\b(9\\.81|4\\.905|39\\.24)\\b");
  const std::regex call("\\b(pow|exp|log|fma)\\s*\\(");
  for (const fs::path& file : files_below(source)) {
    if (fs::relative(file, source).begin()->string() == "physics") continue;
    const std::string code = without_comments(text_of(file));
    EXPECT_FALSE(std::regex_search(code, constant)) << file;
    EXPECT_FALSE(std::regex_search(code, call)) << file;
  }
}

TEST(Layers, PhysicsCallsPowersAndLogarithmsThroughOneHeader) {
  const std::regex call("\\b(pow|exp|log|fma)\\s*\\(");
  for (const fs::path& file : files_below(source / "physics")) {
    if (file.filename() == "arithmetic.hpp") continue;
    EXPECT_FALSE(std::regex_search(without_comments(text_of(file)), call)) << file;
  }
}

TEST(Layers, EveryFormulaAndEveryBodyIsBuiltForTheDeviceToo) {
  const fs::path device = fs::path(QUILLMERE_SOURCE_DIR) / "tests" / "device";
  const std::map<std::string, std::string> checks = {{"physics", "every_formula.hpp"},
                                                     {"kernels", "every_body.hpp"}};
  for (const auto& [folder, check] : checks) {
    const auto included =
        matches(text_of(device / check), std::regex("#include \"(" + folder + "/\\w+\\.hpp)"));
    for (const fs::path& file : files_below(source / folder)) {
      const std::string header = fs::relative(file, source).string();
      EXPECT_TRUE(std::count(included.begin(), included.end(), header)) << header;
    }
  }
}
