// What exports write to, and what they do when they cannot.
#include <filesystem>
#include <string>
#include <vector>

#include "tools/export/ExportTest.hpp"

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

/// Every command that writes one file, and the extension of that file.
const std::vector<std::pair<Words, std::string>> commands = {
    {{"netcdf", "."}, ".nc"},
    {{"netcdf", ".", "--compress"}, ".nc"},
    {{"vtu", "."}, ".pvd"},
    {{"geotiff", ".", "--resolution", "1"}, ".tif"},
    {{"plot", "."}, ".svg"}};

class Outputs : public ExportTest {
 protected:
  void SetUp() override { simulate(flood_case()); }
  /// Runs in a shell, where $0 is the program. A limit to the size of files holds for the file that
  /// keeps its messages too: let them run through a pipe.
  support::RunResult run_in_shell(const std::string& line) {
    support::RunOptions options;
    options.program = "/bin/sh";
    return support::run_program(folder.path(), {"-c", line, QUILLMERE_EXPORT_PROGRAM}, options);
  }
  void expect_no_room_for(const std::string& line) {
    const std::string said =
        run_in_shell("(ulimit -f 0; " + line + "; echo status $?) 2>&1 | cat").out;
    EXPECT_TRUE(support::contains(said, "couldn't be written")) << line << ": " << said;
    EXPECT_TRUE(support::contains(said, "status 1\n")) << line << ": " << said;
    EXPECT_EQ(names_in("new"), Words()) << line;
  }
  /// The names in a folder.
  std::vector<std::string> names_in(const std::string& name) {
    std::vector<std::string> names;
    if (!folder.has(name)) return names;
    for (const auto& entry : fs::directory_iterator(folder.file(name))) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
};

std::string with_output(const Words& command, const std::string& name) {
  std::string line = "\"$0\"";
  for (const std::string& word : command) line += " " + word;
  return line + " -o " + name;
}

}  // namespace

TEST_F(Outputs, ALinkIsNotReplacedNorWrittenThrough) {
  folder.write("precious", "data");
  for (const auto& [command, extension] : commands) {
    const std::string name = "link" + extension;
    if (!folder.has(name)) fs::create_symlink("precious", folder.file(name));
    Words words = command;
    words.insert(words.end(), {"-o", name});
    const support::RunResult result = run(words);
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_TRUE(support::contains(result.err, name + " couldn't be written: it is a link"))
        << result.err;
    EXPECT_TRUE(fs::is_symlink(folder.file(name)));
  }
  EXPECT_EQ(folder.read("precious"), "data");
}

TEST_F(Outputs, ALinkUnderTheTemporaryNameLeadsNowhere) {
  folder.write("precious", "data");
  for (const auto& [command, extension] : commands) {
    const std::string name = "export" + extension;
    fs::remove(folder.file(name + ".part"));
    fs::create_symlink("precious", folder.file(name + ".part"));
    Words words = command;
    words.insert(words.end(), {"-o", name});
    run_well(words);
    EXPECT_GT(folder.read(name).size(), 100U);
    EXPECT_EQ(folder.read("precious"), "data");
  }
}

TEST_F(Outputs, AFileOfTheCaseIsNotReplaced) {
  for (const std::string name : {"data.json", "nodes.txt", "edges.txt", "out/enveloppe.txt"}) {
    const std::string before = folder.read(name);
    const support::RunResult result = run({"geotiff", ".", "--resolution", "1", "-o", name});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(support::contains(result.err, "but it is read")) << result.err;
    EXPECT_EQ(folder.read(name), before);
  }
}

TEST_F(Outputs, ADiskWithoutRoomIsAnErrorAndLeavesNothing) {
  for (const auto& [command, extension] : commands) {
    expect_no_room_for(with_output(command, "new/a" + extension));
  }
  expect_no_room_for(with_output({"csv", "."}, "new"));
}

TEST_F(Outputs, StandardOutputThatCannotBeWrittenIsAnError) {
  for (const char* words : {"--help", "csv ."}) {
    const auto result = run_in_shell("\"$0\" " + std::string(words) + " > /dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "quillmere-export: standard output couldn't be written completely: No space left on "
              "device.\n");
  }
}

TEST_F(Outputs, ClosedStreamsDoNotEndUpInAFile) {
  run_well({"csv", ".", "-o", "usual"});
  EXPECT_EQ(run_in_shell("\"$0\" csv . -o closed <&- >&- 2>&-").status, 0);
  for (const char* name : {"/gauges.csv", "/gauge_points.csv", "/sections.csv"}) {
    EXPECT_EQ(folder.read("closed" + std::string(name)), folder.read("usual" + std::string(name)));
  }
}

TEST_F(Outputs, AnyNameIsTaken) {
  const std::string names[] = {
      "a b", "$x$ $HOME", "100%d",   "line\nend", "'\"`",  "_{^}", "[a,b]",
      "ÄÖ",  "a\\b",      "#mode=x", "-dash",     "file:", "\xff", std::string(200, 'x')};
  for (const std::string& name : names) {
    for (const auto& [command, extension] : commands) {
      if (command.front() == "plot" && name != names[1]) continue;  // it takes its time
      Words words = command;
      words.push_back("--output=" + name + extension);
      run_well(words);
      EXPECT_TRUE(fs::is_regular_file(folder.file(name + extension))) << name;
    }
  }
}

TEST_F(Outputs, NamesOfLibrariesAreNamesOfFiles) {
  const std::string uri = "file://" + folder.path() + "/uri.nc";
  EXPECT_EQ(run_well({"netcdf", ".", "-o", uri}).out, uri + "\n");
  EXPECT_TRUE(fs::is_regular_file(folder.path() + "/file:" + folder.path() + "/uri.nc"));
}

TEST_F(Outputs, ACaseOfAnyNameIsRead) {
  const support::TemporaryFolder elsewhere;
  for (const std::string name : {"a b $x$ 100%d\n'\"`", "-dash"}) {
    fs::copy(folder.path(), elsewhere.path() + "/" + name, fs::copy_options::recursive);
    support::RunOptions options;
    options.program = QUILLMERE_EXPORT_PROGRAM;
    for (const auto& [command, extension] : commands) {
      Words words = {command.front()};
      words.insert(words.end(), command.begin() + 2, command.end());
      words.insert(words.end(), {"--", name});
      const auto result = support::run_program(elsewhere.path(), words, options);
      EXPECT_EQ(result.status, 0) << name << ": " << result.err;
      EXPECT_EQ(result.err, "");
    }
  }
}
