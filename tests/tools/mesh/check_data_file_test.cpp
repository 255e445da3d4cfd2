#include "tools/mesh/CheckTest.hpp"

namespace {

class CheckDataFile : public CheckTest {
 protected:
  /// A case that uses every key of the model with sediments.
  void use_all_keys() {
    c = support::full_case();
    c.west = "-3 -0.1";
    c.north = "-5";
    c.data["crs"] = "EPSG:32632";
    c.data["epoch"] = "2026-05-01T06:00:00Z";
    c.data["output"]["results"] = "results.nc";
    c.data["output"]["results times"] = "times.txt";
    c.data["output"]["results precision"] = "double";
    c.files["times.txt"] = "1 0";
    use_sediments(0.1);
  }
};

/// Pointers to all values in a document, as in "/model/name".
std::vector<std::string> pointers_in(const nlohmann::json& document) {
  std::vector<std::string> found;
  const nlohmann::json flat = document.flatten();
  for (const auto& [pointer, value] : flat.items()) found.push_back(pointer);
  for (const char* const section :
       {"/mesh", "/model", "/model/conditions", "/model/sources", "/model/parameters", "/output"}) {
    if (document.contains(nlohmann::json::json_pointer(section))) found.push_back(section);
  }
  return found;
}

TEST_F(CheckDataFile, RefusesTheAbsenceOfExactlyTheKeysThatTheSimulatorNeeds) {
  use_all_keys();
  const support::Case whole = c;
  int refused = 0;
  for (const std::string& pointer : pointers_in(whole.data)) {
    SCOPED_TRACE(pointer);
    c = whole;
    const nlohmann::json::json_pointer key(pointer);
    c.data[key.parent_pointer()].erase(key.back());
    check();  // compares the two exit statuses
    if (status == 0) continue;
    ++refused;
    ASSERT_EQ(texts("errors", "missing key").size(), 1U);
    EXPECT_TRUE(
        support::contains(texts("errors", "missing key")[0], "\"" + pointer.substr(1) + "\""));
  }
  EXPECT_GT(refused, 20);
}

TEST_F(CheckDataFile, RefusesExactlyTheTypesThatTheSimulatorRefuses) {
  use_all_keys();
  const support::Case whole = c;
  for (const std::string& pointer : pointers_in(whole.data)) {
    SCOPED_TRACE(pointer);
    const nlohmann::json::json_pointer key(pointer);
    c = whole;
    c.data[key] = whole.data[key].is_number() ? nlohmann::json("5") : nlohmann::json(5);
    check();  // compares the two exit statuses
  }
}

TEST_F(CheckDataFile, NamesTheTypeThatIsExpected) {
  c.data["tend"] = "1";
  expect_error("wrong type", {"\"tend\": found \"1\", expected a number"});
}

TEST_F(CheckDataFile, ReportsAllKeysAtOnce) {
  c.data.erase("CFL");
  c.data["mesh"].erase("nodes");
  c.data["name"] = 7;
  check();
  EXPECT_EQ(texts("errors", "missing key").size(), 2U);
  EXPECT_EQ(texts("errors", "wrong type").size(), 1U);
}

TEST_F(CheckDataFile, KnowsTheOriginOfTheMesh) {
  c.data["mesh"]["origin"] = {612000.0, 5235000.0};
  expect_clean();
  c.data["mesh"]["origin"] = "612000,5235000";
  expect_warning("wrong type", {"\"mesh/origin\"", "expected two numbers in brackets"});
}

TEST_F(CheckDataFile, KnowsTheSchemaThatAFileNames) {
  c.data["$schema"] = "quillmere.schema.json";
  expect_clean();
  c.data["$schema"] = 7;
  expect_warning("wrong type", {"\"$schema\": found 7, expected text"});
}

TEST_F(CheckDataFile, TellsThatASectionIsNoObject) {
  c.data["model"]["sources"] = 5;
  expect_warning("wrong type", {"\"model/sources\": found 5, expected an object"});
}

TEST_F(CheckDataFile, SuggestsTheKeyThatIsSpeltMostNearlyLikeAnUnknownOne) {
  c.data["output"]["guages"] = "gauges_in.txt";
  expect_warning("unknown key", {"\"output/guages\"", "did you mean \"gauges\"?"});
}

TEST_F(CheckDataFile, TellsInWhichSectionAKeyBelongs) {
  c.data["friction"] = "friction.txt";
  expect_warning("unknown key", {"\"friction\"", "did you mean \"model/conditions/friction\"?"});
}

TEST_F(CheckDataFile, SuggestsNothingForAKeyThatResemblesNone) {
  c.data["author of this"] = "me";
  check();
  ASSERT_EQ(report["warnings"].size(), 1U);
  EXPECT_FALSE(support::contains(report["warnings"][0]["text"], "did you mean"));
}

TEST_F(CheckDataFile, TellsThatAKeyIsUsedWithAnotherOneOnly) {
  c.data["model"]["sources"]["hyetocells"] = "hyetocells.txt";
  expect_warning("unused key", {"\"model/sources/hyetocells\"", "without \"rainfall\""});
}

TEST_F(CheckDataFile, TellsThatAKeyBelongsToTheOtherModel) {
  c.data["model"]["conditions"]["initial sediments level"] = "sediment.txt";
  expect_warning("unused key", {"initial sediments level", "Bramsett"});
}

TEST_F(CheckDataFile, RefusesWhatIsNotJson) {
  c.write(folder);
  folder.write("data.json", "{\"name\": }");
  const support::RunResult result = mesh_tool({"check", ".", "--json"});
  EXPECT_EQ(result.status, 1);
  report = json::parse(result.out);
  ASSERT_EQ(texts("errors", "data file").size(), 1U);
  EXPECT_TRUE(support::contains(texts("errors", "data file")[0], "line 1, column 10"));
}

TEST_F(CheckDataFile, RefusesValuesThatAreNestedTooDeep) {
  c.write(folder);
  const std::string nested = std::string(100000, '[') + std::string(100000, ']');
  folder.write("data.json", "{\"ignored\": " + nested + "," + c.data.dump().substr(1));
  for (const std::string way : {"--quick", "--json"}) {
    const support::RunResult result = mesh_tool({"check", ".", "--json", way});
    EXPECT_EQ(result.status, 1) << way;
    report = json::parse(result.out);
    EXPECT_EQ(texts("errors", "data file"),
              (std::vector<std::string>{"The values in the file data.json are nested more than 100 "
                                        "levels deep, expected at most 100"}))
        << way;
  }
  EXPECT_EQ(support::run_case(folder).status, 255);
}

TEST_F(CheckDataFile, RefusesADataFileThatIsNotThere) {
  const support::RunResult result = mesh_tool({"check", "nowhere.json", "--json"});
  EXPECT_EQ(result.status, 1);
  report = json::parse(result.out);
  EXPECT_EQ(texts("errors", "unreadable file").size(), 1U);
}

TEST_F(CheckDataFile, RefusesAnUnknownModel) {
  c.data["model"]["name"] = "quillmere";
  expect_error("model", {"\"quillmere\"", "\"Quillmere\" or \"Bramsett\""});
}

TEST_F(CheckDataFile, WarnsOfARunThatEndsBeforeItStarts) {
  c.set_times(3.0, 2.0);
  expect_warning("run time", {"\"tend\" is 2 s", "\"t0\" is 3 s"});
}

TEST_F(CheckDataFile, WarnsOfACourantNumberAboveOne) {
  c.data["CFL"] = 1.5;
  expect_warning("Courant number", {"\"CFL\" is 1.5"});
}

TEST_F(CheckDataFile, WarnsOfACourantNumberThatAdvancesNothing) {
  c.data["CFL"] = 0;
  c.set_times(0.0, -1.0);  // or else the simulator stops at its first step
  check();
  EXPECT_EQ(texts("warnings", "Courant number").size(), 1U);
}

TEST_F(CheckDataFile, WarnsOfANegativeAndOfALargeDryDepth) {
  c.data["model"]["zero depth value"] = -0.1;
  expect_warning("zero depth", {"is -0.1 m"});
  c.data["model"]["zero depth value"] = 0.5;
  expect_warning("zero depth", {"is 0.5 m"});
}

TEST_F(CheckDataFile, WarnsOfAnEnvelopeAtEveryStep) {
  c.data["output"]["time step enveloppe of results"] = 0;
  expect_warning("envelope", {"is 0 s", "every step"});
}

TEST_F(CheckDataFile, RefusesAReferenceThatTheSimulatorRefuses) {
  c.data["crs"] = "UTM 32";
  expect_error("wrong value", {"\"crs\": found \"UTM 32\", expected EPSG: and a number"});
  c.data["crs"] = "EPSG:32632";
  c.data["epoch"] = "tomorrow";
  expect_error("wrong value", {"\"epoch\": found \"tomorrow\", expected a date and hour"});
  c.data["epoch"] = "2026-05-01T06:00:00Z";
  expect_clean();
}

TEST_F(CheckDataFile, RefusesResultsThatTheSimulatorRefuses) {
  c.data["output"]["results"] = "results.nc";
  expect_error("output", {"\"output/results\" needs times", "\"output/results times\""});
  c.data["output"]["results times"] = "times.txt";
  c.files["times.txt"] = "2 0 0.1";
  expect_clean();
  c.data["output"]["results precision"] = "half";
  expect_error("wrong value", {"found \"half\", expected single or double"});
  c.data["output"]["results precision"] = "double";
  c.files["times.txt"] = "2 0.1 0.1";
  expect_error("snapshot", {"times.txt: snapshot 1 at 0.1 s does not come after the one before"});
  c.files["times.txt"] = "2 0 0.1";
  c.data["output"]["results"] = "no/results.nc";
  expect_error("output", {"out/no/results.nc can't be created"});
  c.data["output"]["results"] = "";
  expect_error("output", {"\"output/results\" is empty"});
  c.data["output"]["results"] = "results.nc";
  c.data["mesh"]["origin"] = "612000,5235000";
  expect_error("wrong type", {"\"mesh/origin\"", "expected two numbers in brackets"});
}

TEST_F(CheckDataFile, WarnsOfTimesOfResultsThatTheRunDoesNotReach) {
  c.data["output"]["results"] = "results.nc";
  c.data["output"]["results times"] = "times.txt";
  c.files["times.txt"] = "2 0 1000";
  expect_warning("snapshot", {"snapshot 1 at 1000 s is not written"});
}

}  // namespace
