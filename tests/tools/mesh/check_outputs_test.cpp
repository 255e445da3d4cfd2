#include <filesystem>

#include "tools/mesh/CheckTest.hpp"

namespace {

class CheckOutputs : public CheckTest {};

TEST_F(CheckOutputs, NamesTheGaugeInNoCellAndTheNearestOne) {
  c.add_gauges({{1.6, 1.3}, {4.5, 1.4}}, 0.01);
  expect_warning("gauge in no cell",
                 {"gauge 1 at (4.5, 1.4) lies in no cell", "nearest, cell 14, is 0.8"});
}

TEST_F(CheckOutputs, NamesTheGaugeOnAnEdge) {
  c.add_gauges({{1.5, 1.5}}, 0.01);
  expect_warning("gauge in no cell", {"gauge 0 at (1.5, 1.5)", "on an edge"});
}

TEST_F(CheckOutputs, RefusesAGaugeResultThatCannotBeCreated) {
  c.add_gauges({{1.6, 1.3}}, 0.01, "nowhere/gauges.txt");
  expect_error("output", {"out/nowhere/gauges.txt can't be created"});
  c.set_times(1.0, 1.0);  // a run without a step writes none
  check();
  EXPECT_EQ(status, 0);
}

TEST_F(CheckOutputs, RefusesAFinalStateWithoutAName) {
  c.data["output"]["final state"] = "";
  expect_error("output", {"\"output/final state\" is empty, expected the name of a file"});
  c.data["output"]["final state"] = 7;
  expect_error("wrong type", {"\"output/final state\": found 7, expected text in quotes"});
}

TEST_F(CheckOutputs, RefusesAFinalStateInPlaceOfAnotherResult) {
  c.data["output"]["final state"] = "../log.txt";
  expect_error("results", {"the final state (out/../log.txt) would replace another result"});
  c.data["output"]["final state"] = "final.txt";
  expect_clean();
}

TEST_F(CheckOutputs, RefusesMaximaThatNoRunWouldWrite) {
  auto& maxima = c.data["output"]["maxima of flow"];
  maxima = {{"file", ""}};
  expect_error("output", {"\"output/maxima of flow/file\" is empty"});
  maxima = {{"file", "maxima.txt"}, {"arrival depth", -1}};
  expect_error("output", {"\"output/maxima of flow/arrival depth\" is -1 m"});
  maxima = {{"arrival depth", 0.1}};
  expect_error("missing key", {"\"output/maxima of flow/file\" is missing"});
  maxima = {{"file", "../log.txt"}};
  expect_error("results", {"the maxima (out/../log.txt) would replace another result"});
  maxima = {{"file", "maxima.txt"}};
  expect_clean();
  maxima["depth of arrival"] = 0.1;
  expect_warning("unknown key", {"output/maxima of flow/depth of arrival"});
  maxima = "maxima.txt";
  check();
  EXPECT_EQ(texts("errors", "missing key").size(), 1U);
  EXPECT_EQ(texts("warnings", "wrong type").size(), 1U);
}

TEST_F(CheckOutputs, RefusesMalformedGauges) {
  c.add_gauges({{1.6, 1.3}}, 0.01);
  c.files["gauges_in.txt"] = "1 gauges.txt 0.5\n1.6 here 0\n";
  expect_error("malformed value", {"gauges_in.txt, line 2, gauge 0", "y: found \"here\""});
}

TEST_F(CheckOutputs, RefusesASectionOfUnknownEdges) {
  c.add_sections({{43}}, 0.01);
  expect_error("malformed value", {"sections_in.txt", "section 0", "found \"43\""});
}

TEST_F(CheckOutputs, NamesTheSectionWhoseNormalsDiffer) {
  std::vector<int> section = c.edges_across(2);
  c.add_sections({section}, 0.01);
  expect_clean();
  // The edge in the middle turned round, with its cells.
  const std::string record =
      support::lines(c.edges_text())[static_cast<std::size_t>(section[1]) + 1];
  const std::vector<std::string> words = support::split(record, ' ');
  c.files["edges.txt"] =
      with_record(c.edges_text(), section[1],
                  words[1] + " " + words[0] + " " + words[3] + " " + words[2] + " -1");
  expect_warning("section", {"section 0", "different sides"});
}

TEST_F(CheckOutputs, WarnsOfASectionResultThatCannotBeCreated) {
  c.add_sections({{0}}, 0.01, "nowhere/sections.txt");
  expect_warning("output", {"nowhere/sections.txt can't be created"});
}

TEST_F(CheckOutputs, WarnsOfRecordingsWithoutAnInterval) {
  c.add_gauges({{0.6, 0.2}}, 0.0);
  expect_warning("recording interval", {"gauges_in.txt: the recording interval is 0 s"});
  c = recorded_case();
  c.add_sections({{0}}, -1.0);
  expect_warning("recording interval", {"sections_in.txt: the recording interval is -1 s"});
}

TEST_F(CheckOutputs, NamesIntervalsThatLeaveTheEndUnrecorded) {
  c.data["output"]["time step enveloppe of results"] = 0.3;
  expect_warning("end not recorded", {"\"output/time step enveloppe of results\" is 0.3 s",
                                      "after 0.9 s, in the last 0.1 s of the run"});
  c = recorded_case();
  c.add_gauges({{1.6, 1.3}}, 0.5);
  expect_warning("end not recorded", {"gauges_in.txt: the recording interval is 0.5 s",
                                      "after 0.5 s, in the last 0.5 s of the run"});
  c = recorded_case();
  c.add_sections({{0}}, 0.4);
  expect_warning("end not recorded", {"sections_in.txt: the recording interval is 0.4 s",
                                      "after 0.8 s, in the last 0.2 s of the run"});
  c.set_times(1.0, 1.0);  // nothing is recorded at all
  check();
  EXPECT_TRUE(texts("warnings", "end not recorded").empty());
}

TEST_F(CheckOutputs, SuggestsAnIntervalThatRecordsTheEnd) {
  c.data["output"]["time step enveloppe of results"] = 0.25;
  check();
  const std::vector<std::string> found = texts("warnings", "end not recorded");
  ASSERT_EQ(found.size(), 1U);
  const std::size_t at = found[0].find("; with ");
  ASSERT_NE(at, std::string::npos) << found[0];
  c.data["output"]["time step enveloppe of results"] = std::stod(found[0].substr(at + 7));
  expect_clean();
}

TEST_F(CheckOutputs, NamesSnapshotsThatAreLate) {
  c.add_snapshots({0.5, 0.25});
  expect_warning("snapshot", {"snapshot 1 at 0.25 s", "late"});
}

TEST_F(CheckOutputs, NamesSnapshotsThatTheRunDoesNotReach) {
  c.add_snapshots({0.0, 1.0});
  expect_warning("snapshot", {"snapshot 1 at 1 s is not written", "ends at 1 s"});
}

TEST_F(CheckOutputs, NamesSnapshotsBeforeTheRun) {
  c.set_times(1.0, 2.0);
  c.add_snapshots({0.5, 1.5});
  expect_warning("snapshot", {"snapshot 0 at 0.5 s lies before the run"});
}

TEST_F(CheckOutputs, RefusesMalformedSnapshots) {
  c.add_snapshots({0.5});
  c.files["snapshots_in.txt"] = "";
  expect_error("malformed value", {"snapshots_in.txt", "number of snapshots"});
}

TEST_F(CheckOutputs, WarnsOfAMissingFolder) {
  c.data["output"]["folder"] = "results/";
  expect_warning("output", {"the output folder results does not exist"});
}

TEST_F(CheckOutputs, WarnsOfAFolderThatIsTakenForABeginningOfNames) {
  c.data["output"]["folder"] = "out";
  expect_warning("output", {"\"out\"", "does not end with /"});
}

TEST_F(CheckOutputs, RefusesResultsThatWouldDestroyAnInput) {
  c.data["output"]["folder"] = "";
  c.add_friction("");
  c.data["model"]["conditions"]["friction"] = "enveloppe.txt";
  c.files["enveloppe.txt"] = c.per_cell("0.03");
  check();
  EXPECT_EQ(texts("errors", "results"),
            std::vector<std::string>{"the envelope (enveloppe.txt) would replace an input file of "
                                     "this run (enveloppe.txt)"});
}

TEST_F(CheckOutputs, RefusesResultsThatWouldDestroyEachOther) {
  c.add_gauges({{1.6, 1.3}}, 0.01, "same.txt");
  c.add_sections({{0}}, 0.01, "out/same.txt");
  expect_error("results", {"the sections (out/same.txt)", "the gauges (out/same.txt)"});
}

TEST_F(CheckOutputs, NamesResultsOutsideTheFolderOfTheCase) {
  const support::TemporaryFolder elsewhere;
  c.data["output"]["folder"] = elsewhere.path() + "/";
  expect_warning("results outside", {"the envelope (" + elsewhere.path() + "/enveloppe.txt)"});
  c.data["output"]["folder"] = "out/";
  const std::string beside =
      "out/../../" + std::filesystem::path(elsewhere.path()).filename().string() + "/sections.txt";
  c.add_sections({{0}}, 0.01, beside);
  expect_warning("results outside", {"the sections (" + beside + ")"});
  c.add_sections({{0}}, 0.01, folder.file("sections.txt"));
  expect_clean();
}

}  // namespace
