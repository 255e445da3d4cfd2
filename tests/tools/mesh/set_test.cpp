// Values of a case that are changed without a new import.
#include <cmath>
#include <filesystem>
#include <map>

#include "tools/mesh/ImportTest.hpp"

namespace {

using support::contains;
using support::Words;

class Set : public support::ImportTest {
 protected:
  Set() {
    import_well({"--level", "0.8", "--friction", "0.03", "--boundary", "west=discharge:-1m3/s",
                 "--boundary", "east=level:0.8", "--end", "60", "--section", "gate"});
  }
  support::RunResult set(Words words) {
    words.insert(words.begin(), {"set", "case"});
    support::RunOptions options;
    options.program = QUILLMERE_MESH_PROGRAM;
    return support::run_program(folder.path(), words, options);
  }
  std::string set_well(const Words& words) {
    const auto result = set(words);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  /// All files of the case, by their names.
  std::map<std::string, std::string> files() {
    std::map<std::string, std::string> texts;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("case"))) {
      const std::string name = entry.path().filename().string();
      if (entry.is_regular_file()) texts[name] = folder.read("case/" + name);
    }
    return texts;
  }
};

TEST_F(Set, GivesTheCaseThatAnImportWithTheValuesGives) {
  folder.write("flood.csv", "t [min], Q [m3/s]\n0, -1\n2, -2\n");
  const std::string out =
      set_well({"boundary.west=hydrograph:flood.csv", "boundary.east=transmissive", "end=2min",
                "interval=20", "friction=0.05", "cfl=0.8", "scheme=HLL1", "name=Another flood"});
  EXPECT_TRUE(
      contains(out, "west        hydrograph                   3           3 m  -1 m3/s (in)"))
      << out;
  const auto changed = files();
  const auto document = data();
  import_well({"--level",    "0.8",
               "--friction", "0.05",
               "--boundary", "west=hydrograph:flood.csv",
               "--boundary", "east=transmissive",
               "--end",      "120",
               "--interval", "20",
               "--section",  "gate",
               "--cfl",      "0.8",
               "--scheme",   "HLL1",
               "--name",     "Another flood",
               "--overwrite"});
  EXPECT_EQ(data(), document);
  auto expected = files();
  for (const auto& [name, text] : expected) {
    if (name == "data.json") continue;
    EXPECT_EQ(changed.at(name), text) << name;
  }
  EXPECT_EQ(changed.size(), expected.size());
}

TEST_F(Set, ChangesWhatARunDoes) {
  set_well({"boundary.west=discharge:-1.5m3/s", "spread.west=even"});
  run_case();
  EXPECT_NEAR(column("out/sections.txt", 1, 0).back(), 1.5, 0.15);
}

TEST_F(Set, KeepsAllElse) {
  const auto before = files();
  set_well({"friction=0.1"});
  auto after = files();
  EXPECT_EQ(column("friction.txt", 0, 0), std::vector<double>(24, 0.1));
  for (const auto& [name, text] : before) {
    if (name == "friction.txt") continue;
    EXPECT_EQ(after.at(name), text) << name;
  }
  EXPECT_EQ(after.size(), before.size());
}

TEST_F(Set, GivesFrictionToASmoothBed) {
  std::filesystem::remove_all(folder.file("case"));
  import_well({});
  EXPECT_FALSE(folder.has("case/friction.txt"));
  set_well({"friction=0.02"});
  EXPECT_EQ(data()["model"]["conditions"]["friction"], "friction.txt");
  run_case();
}

TEST_F(Set, KeepsToTheSchemesOfTheModel) {
  import_well({"--level", "0.8", "--sediment", "0.2", "--grain-diameter", "0.001", "--friction",
               "0.03", "--zero-depth", "0.001", "--overwrite"});
  EXPECT_TRUE(contains(set({"scheme=HLL2"}).err,
                       "scheme=HLL2: the model with sediments has no such "
                       "scheme; expected LHLLC or HLL1."));
  EXPECT_EQ(data()["model"]["flux scheme"], "LHLLC");
  set_well({"scheme=HLL1"});
  EXPECT_EQ(data()["model"]["flux scheme"], "HLL1");
}

TEST_F(Set, RefusesWhatItDoesNotKnowAndChangesNothing) {
  const auto before = files();
  const std::map<std::string, std::string> faults = {
      {"fricton=0.1", "found \"fricton=0.1\", expected one of end=TIME, interval=TIME"},
      {"end", "found \"end\", expected one of"},
      {"end=never", "found \"end=never\", expected a time above 0"},
      {"cfl=-1", "expected a number above 0"},
      {"scheme=Roe", "found \"scheme=Roe\", expected one of "},
      {"boundary.west=discharge:-1m", "expected a number after \"discharge:\""},
      {"spread.west=wet", "expected NAME=even or NAME=LEVEL"}};
  for (const auto& [text, message] : faults) {
    const auto result = set({"friction=0.1", text});
    EXPECT_EQ(result.status, 2) << text;
    EXPECT_TRUE(contains(result.err, message)) << result.err;
  }
  EXPECT_TRUE(contains(set({"friction=0.1", "boundary.north=wall"}).err,
                       "boundary.north: the case has no boundary of this name; it has: east, "
                       "west."));
  EXPECT_TRUE(contains(set({"spread.west=even"}).err, "no discharge in m3/s is given"));
  folder.write("case/names.json", R"({"boundaries": {"west": [0, 99]}})");
  EXPECT_TRUE(contains(set({"boundary.west=wall"}).err, "names.json: edge "));
  folder.write("case/names.json", before.at("names.json"));
  EXPECT_EQ(files(), before);
}

}  // namespace
