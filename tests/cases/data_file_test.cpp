#include <exception>

#include "case/DataFileReader.hpp"
#include "cases/CaseTest.hpp"

namespace {

using nlohmann::json;
using support::RunResult;

const std::string not_found = "Error. The following key couldn't be found in the datafile: ";
const std::string bad_format = "Error. The following key has incorrect format in the datafile: ";

using DataFile = CaseTest;

TEST_F(DataFile, IsCheckedInTheOrderInWhichItsKeysAreUsed) {
  struct Key {
    std::string pointer;
    json value;
  };
  const std::vector<Key> keys = {{"/name", "n"},
                                 {"/t0", 0},
                                 {"/tend", 0},
                                 {"/CFL", 1},
                                 {"/mesh", json::object()},
                                 {"/mesh/nodes", "nodes.txt"},
                                 {"/mesh/cells", "cells.txt"},
                                 {"/mesh/edges", "edges.txt"},
                                 {"/model", json::object()},
                                 {"/model/name", "Quillmere"},
                                 {"/model/flux scheme", "LHLLC"},
                                 {"/model/conditions", json::object()},
                                 {"/model/conditions/initial conditions", "initial.txt"},
                                 {"/model/sources", {{"rainfall", "r.txt"}}},
                                 {"/model/sources/hyetocells", "h.txt"},
                                 {"/model/sources", {{"infiltration", "i.txt"}}},
                                 {"/model/sources/infiltracells", "c.txt"},
                                 {"/output", json::object()},
                                 {"/output/folder", "out/"},
                                 {"/output/time step enveloppe of results", 1}};
  c.data = json::object();
  for (const Key& key : keys) {
    const json::json_pointer pointer(key.pointer);
    if (!c.data.contains(pointer)) expect_stop(not_found + pointer.back() + "\n");
    c.data[pointer] = key.value;
  }
  c.data["model"]["sources"] = json::object();
  run_with_warning("computes nothing");
}

TEST_F(DataFile, ReportsAValueOfTheWrongType) {
  c.data["t0"] = "0";
  expect_stop(bad_format + "t0\n");
}

TEST_F(DataFile, RefusesValuesThatAreNestedTooDeep) {
  c.write(folder);
  const std::string data = c.data.dump();
  const std::string refusal =
      "Error. The values in the file data.json are nested more than 100 levels deep, expected at "
      "most 100.\n";
  struct Brackets {
    std::string open, close;
    std::size_t levels;
  };
  for (const Brackets& brackets :
       {Brackets{"[", "]", 1}, Brackets{"{\"a\":", "}", 1}, Brackets{"[{\"a\":", "}]", 2}}) {
    const auto nested = [&](std::size_t times) {
      std::string text = "{\"ignored\": ";
      for (std::size_t i = 0; i < times; ++i) text += brackets.open;
      text += "0";
      for (std::size_t i = 0; i < times; ++i) text += brackets.close;
      return text + "," + data.substr(1);
    };
    for (const std::size_t times : {99 / brackets.levels + 1, std::size_t{100000}}) {
      folder.write("data.json", nested(times));
      const RunResult result = support::run_case(folder);
      EXPECT_EQ(result.status, 255) << times << brackets.open;
      EXPECT_EQ(result.err, refusal) << times << brackets.open;
    }
    folder.write("data.json", nested(99 / brackets.levels));
    EXPECT_EQ(support::run_case(folder).status, 0) << brackets.open;
  }
}

TEST_F(DataFile, ReportsTheZeroDepthBeforeTheFluxScheme) {
  c.data["model"]["zero depth value"] = "thin";
  c.data["model"].erase("flux scheme");
  expect_stop(bad_format + "zero depth value\n");
}

TEST_F(DataFile, ReportsOptionalFilesOfTheWrongTypeInTheOrderOfTheirUse) {
  const std::vector<std::string> pointers = {"/model/conditions/fixed bed level",
                                             "/model/conditions/friction",
                                             "/model/sources/rainfall",
                                             "/model/sources/hyetocells",
                                             "/model/sources/infiltration",
                                             "/model/sources/infiltracells",
                                             "/model/sources/initial infiltration",
                                             "/output/snapshots of flow",
                                             "/output/gauges",
                                             "/output/discharges"};
  for (const std::string& text : pointers) c.data[json::json_pointer(text)] = 5;
  for (const std::string& text : pointers) {
    const json::json_pointer pointer(text);
    expect_stop(bad_format + pointer.back() + "\n");
    c.data[pointer] = "missing.txt";
  }
}

TEST_F(DataFile, NeedsTheSedimentKeysForTheModelWithSedimentsBeforeItsOutputs) {
  c.data["model"]["name"] = "Bramsett";
  c.data.erase("output");
  expect_stop(not_found + "initial sediments level\n");
  c.data["model"]["conditions"]["initial sediments level"] = "layer.txt";
  expect_stop(not_found + "parameters\n");
  c.data["model"]["parameters"] = json::object();
  for (const char* key : {"sediments mean grain diameter", "sediments density",
                          "sediments friction coefficient", "sediments porosity"}) {
    expect_stop(not_found + key + "\n");
    c.data["model"]["parameters"][key] = "text";
    expect_stop(bad_format + key + "\n");
    c.data["model"]["parameters"][key] = 0.5;
  }
  expect_stop(not_found + "output\n");
}

TEST_F(DataFile, NeedsTheSourcesObjectEvenWithoutSources) {
  c.data["model"].erase("sources");
  expect_stop(not_found + "sources\n");
}

TEST_F(DataFile, NeedsHyetocellsWithRainAndInfiltracellsWithInfiltration) {
  c.data["model"]["sources"] = {{"rainfall", "rain.txt"}};
  expect_stop(not_found + "hyetocells\n");
  c.data["model"]["sources"] = {{"infiltration", "soils.txt"}};
  expect_stop(not_found + "infiltracells\n");
}

TEST_F(DataFile, WritesNothingToTheOutputFolderWhenItFails) {
  c.data["output"].erase("folder");
  c.add_gauges({}, 1.0);
  expect_stop(not_found + "folder\n");
  EXPECT_TRUE(std::filesystem::is_empty(folder.file("out")));
}

TEST_F(DataFile, EndsWithTheParsersWordsWhenItIsMalformed) {
  for (const char* text : {"", "{", "{\"name\": nothing}", "{\"name\" \"n\"}"}) {
    const std::string path = folder.write("data.json", text);
    std::string words;
    try {
      const utils::DataFileReader reader(path);
    } catch (const std::exception& error) {
      words = error.what();
    }
    ASSERT_NE(words, "");
    const RunResult result = support::run_case(folder);
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.err, words + "\n");
  }
}

TEST_F(DataFile, EndsWithAnErrorWhenAnEnclosingValueIsNoObject) {
  for (const char* key : {"mesh", "model", "output"}) {
    c = support::Case();
    c.data[key] = "text";
    const RunResult result = run();
    EXPECT_EQ(result.status, 255) << key;
    EXPECT_EQ(support::lines(result.err).size(), 1U) << key;
  }
}

TEST_F(DataFile, AcceptsExtensionsOfAnyKind) {
  for (const json& value : {json(1), json("text"), json::object(), json(nullptr)}) {
    c.data["extensions"] = value;
    run_well();
  }
}

TEST_F(DataFile, WithAnUnknownModelEndsBeforeAnyMeshFileIsOpened) {
  for (const char* name : {"quillmere", "BRAMSETT", "Other", ""}) {
    c.data["model"]["name"] = name;
    c.data["mesh"] = {{"nodes", "no.txt"}, {"cells", "no.txt"}, {"edges", "no.txt"}};
    c.write(folder);
    const RunResult result = support::run_program(folder.path(), {"-f", "data.json"});
    const std::string fall_back = std::string("\n    Physical model code ") + name +
                                  " does not exist!\n    Fall-back to SWE.\n";
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.out, "Welcome to Quillmere !\nStill water\n" + fall_back);
    EXPECT_EQ(result.err, "Physical model not recognized\n");
    EXPECT_TRUE(support::contains(folder.read("log.txt"),
                                  "Parameters of the computational method: \n" + fall_back));
  }
}

TEST_F(DataFile, WithAnUnknownModelAndWithoutEchoSaysSoInTheLog) {
  c.data["model"]["name"] = "Other";
  const RunResult result = run();
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "Physical model not recognized\n");
  EXPECT_TRUE(support::contains(folder.read("log.txt"), "    Fall-back to SWE.\n"));
}

TEST_F(DataFile, WithTheReservedSchemeEndsWithAnError) {
  c.data["model"]["flux scheme"] = "Roe";
  const RunResult result = run();
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.out, "should be Roe scheme\n");
  EXPECT_TRUE(support::contains(result.err, "Roe"));
}

TEST_F(DataFile, WithAnUnknownSchemeEndsAtTheFirstInteriorEdge) {
  for (const char* name : {"lhllc", "HLL", ""}) {
    c.data["model"]["flux scheme"] = name;
    expect_stop("Boundary condition of type 0 not defined!\n");
  }
}

TEST_F(DataFile, WithAnUnknownSchemeRunsAMeshWithoutInteriorEdges) {
  c.data["model"]["flux scheme"] = "none";
  c.files["nodes.txt"] = "3\n0 0 0\n1 0 0\n0 1 0\n";
  c.files["cells.txt"] = "1\n3 0 1 2\n";
  c.files["edges.txt"] = "3\n0 -1 0 1 -5\n0 -1 1 2 -5\n0 -1 2 0 -5\n";
  run_well();
}

}  // namespace
