// Results that would destroy an input or another result: nothing is written.
#include <sys/stat.h>

#include <fstream>

#include "cases/CaseTest.hpp"

namespace {

namespace fs = std::filesystem;
using support::RunResult;

class ResultNames : public CaseTest {
 protected:
  ResultNames() { c = support::full_case(2, 1); }

  /// The texts of all files in the folder of the case, by name.
  std::map<std::string, std::string> texts() {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
      const std::string name = fs::relative(entry.path(), folder.path()).string();
      if (entry.is_regular_file()) found[name] = folder.read(name);
    }
    return found;
  }
  /// The run ends with this sentence and leaves every file as it is.
  void expect_refusal(const std::string& sentence, std::vector<std::string> arguments = {}) {
    c.write(folder);
    const auto before = texts();
    if (arguments.empty()) arguments = {"-f", "data.json"};
    const RunResult result = support::run_program(folder.path(), arguments);
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.err, "Error. " + sentence + ".\n");
    EXPECT_EQ(texts(), before);
  }
};

TEST_F(ResultNames, MayNotBeThoseOfInputs) {
  for (const std::string name : {"sections_in.txt", "nodes.txt", "data.json", "./initial.txt",
                                 "out/../inflow.txt", "friction.txt"}) {
    c.add_sections({{0}}, 0.5, name);
    const std::string input = fs::path(name).filename().string();
    expect_refusal("The sections (" + name + ") would replace an input file of this run (" + input +
                   ")");
  }
  c = support::full_case(2, 1);
  c.data["output"]["folder"] = "";
  c.add_gauges({{0.6, 0.2}}, 0.5, "gauges_in.txt");
  expect_refusal(
      "The gauges (gauges_in.txt) would replace an input file of this run (gauges_in.txt)");
}

TEST_F(ResultNames, AreForeseenThoughTheDataFileCanBeReadOnlyOnce) {
  c.add_sections({{0}}, 0.5, "nodes.txt");
  c.write(folder);
  const auto before = texts();
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  support::RunningProgram program(folder.path(), {"-f", "pipe"}, {.time_limit = 30.0});
  std::ofstream(folder.file("pipe")) << folder.read("data.json");
  const RunResult result = program.wait();
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err, "would replace an input file of this run (nodes.txt)"))
      << result.err;
  EXPECT_EQ(texts(), before);
}

TEST_F(ResultNames, AreKnownByAnyWayToTheirFolder) {
  for (const std::string name : {"../log.txt", "./../log.txt"}) {
    c.add_gauges({{0.6, 0.2}}, 0.5, name);
    expect_refusal("The gauges (out/" + name +
                   ") would replace another result of this run, the log (log.txt)");
  }
}

TEST_F(ResultNames, OfSnapshotsAreForeseenHoweverTheirTimesAreWritten) {
  for (const std::string times : {"1\n+1.25\n",
                                  "\xEF\xBB\xBF"
                                  "1\n1.25\n"}) {
    c.files["times.txt"] = times;
    c.data["output"]["snapshots of flow"] = "times.txt";
    c.add_gauges({{0.6, 0.2}}, 0.5, "pic_1_25.txt");
    expect_refusal(
        "The gauges (out/pic_1_25.txt) would replace another result of this run, the snapshot "
        "(out/pic_1_25.txt)");
  }
}

TEST_F(ResultNames, OfTheEnvelopeAndOfSnapshotsMayNotBeThoseOfInputs) {
  c.data["output"]["folder"] = "";
  for (const std::string name : {"enveloppe.txt", "pic_1_25.txt"}) {
    c.files[name] = c.per_cell("0.03");
    c.data["model"]["conditions"]["friction"] = name;
    const std::string what = name[0] == 'e' ? "The envelope (" : "The snapshot (";
    expect_refusal(what + name + ") would replace an input file of this run (" + name + ")");
    fs::remove(folder.file(name));
    c.files.erase(name);
  }
  c.files["enveloppe.txt.part"] = c.per_cell("0.03");
  c.data["model"]["conditions"]["friction"] = "enveloppe.txt.part";
  expect_refusal(
      "The envelope (while it grows: enveloppe.txt.part) would replace an input file of this run "
      "(enveloppe.txt.part)");
}

TEST_F(ResultNames, OfTheLogMayNotBeThatOfAnInput) {
  const std::string sentence =
      "The log (log.txt) would replace an input file of this run (log.txt)";
  c.files["log.txt"] = c.data.dump();
  expect_refusal(sentence, {"-f", "log.txt"});
  c.files["log.txt"] = c.per_cell("0.03");
  c.data["model"]["conditions"]["friction"] = "log.txt";
  expect_refusal(sentence);
}

TEST_F(ResultNames, MayNotBeThoseOfTimeSeries) {
  c.west = "-33 log.txt";
  c.files["log.txt"] = "2\n0 -0.1\n20 -0.1\n";
  expect_refusal("The log (log.txt) would replace an input file of this run (log.txt)");
  fs::remove(folder.file("log.txt"));
  c.files.erase("log.txt");
  c.west = "-33 out/enveloppe.txt";
  fs::create_directory(folder.file("out"));
  c.files["out/enveloppe.txt"] = "2\n0 -0.1\n20 -0.1\n";
  expect_refusal(
      "The envelope (out/enveloppe.txt) would replace an input file of this run "
      "(out/enveloppe.txt)");
}

TEST_F(ResultNames, MayNotLeadToInputsByLinks) {
  c.write(folder);
  fs::create_symlink("../friction.txt", folder.file("out/enveloppe.txt"));
  expect_refusal(
      "The envelope (out/enveloppe.txt) would replace an input file of this run (friction.txt)");
  fs::remove(folder.file("out/enveloppe.txt"));
  fs::create_hard_link(folder.file("bed.txt"), folder.file("out/pic_0_50.txt.part"));
  expect_refusal(
      "The snapshot (while it grows: out/pic_0_50.txt.part) would replace an input file of this "
      "run (bed.txt)");
}

TEST_F(ResultNames, MayNotBeThoseOfOtherResults) {
  c.add_sections({{0}}, 0.5, "out/gauges.txt");
  expect_refusal(
      "The sections (out/gauges.txt) would replace another result of this run, the gauges "
      "(out/gauges.txt)");
  c = support::full_case(2, 1);
  c.add_gauges({{0.6, 0.2}}, 0.5, "enveloppe.txt");
  expect_refusal(
      "The gauges (out/enveloppe.txt) would replace another result of this run, the envelope "
      "(out/enveloppe.txt)");
  c.data["output"]["folder"] = "";
  c.add_gauges({{0.6, 0.2}}, 0.5, "log.txt");
  expect_refusal(
      "The gauges (log.txt) would replace another result of this run, the log (log.txt)");
}

TEST_F(ResultNames, OfTheReportMayNotBeThatOfAnotherFile) {
  expect_refusal(
      "The report (./friction.txt) would replace an input file of this run (friction.txt)",
      {"-f", "data.json", "--report", "./friction.txt"});
  expect_refusal("The report (log.txt) would replace another result of this run, the log (log.txt)",
                 {"-f", "data.json", "--report", "log.txt"});
  expect_refusal(
      "The snapshot (out/pic_0_50.txt) would replace another result of this run, the report "
      "(out/pic_0_50.txt)",
      {"-f", "data.json", "--report", "out/pic_0_50.txt"});
  c.data["model"].erase("name");  // a report is also written of a run that ends early
  expect_refusal("The report (friction.txt) would replace an input file of this run (friction.txt)",
                 {"-f", "data.json", "--report", "friction.txt"});
}

TEST_F(ResultNames, MayBeThoseOfEarlierResults) {
  const auto outputs = [&] {
    run_well();
    return files_of(folder);
  };
  const auto first = outputs();
  EXPECT_EQ(outputs(), first);
}

TEST_F(ResultNames, MayBeThoseOfTheSameDevice) {
  c.data["output"]["folder"] = "/dev/";
  c.add_gauges({{0.6, 0.2}}, 0.5, "null");
  c.add_sections({{0}}, 0.5, "/dev/null");
  c.data["output"].erase("snapshots of flow");
  c.set_times(1.0, 1.0);  // no envelope among the devices
  run_with_warning("it computes nothing");
}

}  // namespace
