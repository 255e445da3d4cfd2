// A geometry of Gmsh is a program: what it may do to the user who imports it.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/left_behind.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"

namespace {

constexpr char square[] =
    "Point(1) = {0, 0, 0, 0.5}; Point(2) = {1, 0, 0, 0.5};\n"
    "Point(3) = {1, 1, 0, 0.5}; Point(4) = {0, 1, 0, 0.5};\n"
    "Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};\n"
    "Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};\n";

/// Every command that the geometries run would create the file "ran".
class GeoCommands : public testing::Test {
 protected:
  GeoCommands() { command = "SystemCall \"touch " + folder.file("ran") + "\";\n"; }

  support::RunResult import(const std::string& geometry, std::vector<std::string> options = {}) {
    folder.write("m.geo", geometry);
    std::vector<std::string> words = {
        "HOME=" + folder.path(), QUILLMERE_MESH_PROGRAM, "import", "m.geo", "case", "--overwrite"};
    words.insert(words.end(), options.begin(), options.end());
    support::RunOptions run;
    run.program = "/usr/bin/env";
    return support::run_program(folder.path(), words, run);
  }
  void expect_refusal(const std::string& geometry, const std::string& place) {
    const auto result = import(geometry);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "quillmere-mesh: m.geo" + place +
                              ": the geometry runs a command, itself or through a file that it "
                              "reads; expected one that runs none, or --allow-commands, if you "
                              "trust it.\n");
    EXPECT_FALSE(folder.has("ran"));
    EXPECT_FALSE(folder.has("case/data.json"));
  }

  support::TemporaryFolder folder;
  std::string command;
};

}  // namespace

TEST_F(GeoCommands, SettingsOfTheUserAreNotRead) {
  folder.write(".gmshrc", command);
  folder.write(".gmsh-options", command);
  const auto result = import(square);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_FALSE(folder.has("ran"));
}

TEST_F(GeoCommands, AreRefusedWithTheirPlace) {
  expect_refusal(square + command, ", line 5: SystemCall");
  expect_refusal("NonBlocking" + command + square, ", line 1: NonBlockingSystemCall");
  expect_refusal("OnelabRun(\"x\", \"touch " + folder.file("ran") + "\");\n",
                 ", line 1: OnelabRun");
}

TEST_F(GeoCommands, AreRefusedWhereverTheyHide) {
  folder.write("other.geo", command);
  expect_refusal("Include \"other.geo\";\n" + std::string(square), "");
  expect_refusal("Merge StrCat(\"oth\", \"er.geo\");\n", "");
  folder.write("m.geo.opt", command);  // Gmsh reads it with m.geo
  expect_refusal(square, "");
}

TEST_F(GeoCommands, ThatAreNotReachedDoNoHarm) {
  const auto result = import(square + ("If (0)\n" + command + "EndIf\n// " + command));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
}

TEST_F(GeoCommands, RunWhereTheyAreAllowed) {
  const auto result = import(square + command, {"--allow-commands"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Warning: m.geo, line 5: SystemCall: the geometry may run commands.\n");
  EXPECT_TRUE(folder.has("ran"));
  EXPECT_TRUE(folder.has("case/data.json"));
}

TEST_F(GeoCommands, AnExitWithoutAMeshIsExplained) {
#ifdef QUILLMERE_SANITIZED
  GTEST_SKIP() << "a search for leaks at the exit starts a process";
#endif
  const auto result = import(square + std::string("Exit;\n"));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillmere-mesh: m.geo: Gmsh ended without a mesh; expected a geometry without "
            "Exit.\n");
}

TEST_F(GeoCommands, AnyNameOfAGeometryIsTaken) {
  for (const std::string name : {"a b$x$.geo", "line\nend.geo", "'\"`.geo", "-dash.geo"}) {
    folder.write(name, square);
    support::RunOptions options;
    options.program = QUILLMERE_MESH_PROGRAM;
    const auto result =
        support::run_program(folder.path(), {"import", "--overwrite", "--", name, "case"}, options);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(GeoCommands, NothingStaysOfAnImportThatIsEndedFromOutside) {
  folder.write("large.geo", "Mesh.CharacteristicLengthMax = 0.001;\n" + std::string(square));
  for (const int signal : {SIGTERM, SIGKILL}) {
    SCOPED_TRACE(signal);
    support::expect_nothing_left_behind(
        folder, {QUILLMERE_MESH_PROGRAM, "import", "large.geo", "case"}, signal,
        [](const std::filesystem::path& place) {
          // The program, what keeps watch over its temporary folder, and Gmsh.
          return support::processes_with(place.string()).size() == 3;
        });
  }
}

TEST_F(GeoCommands, NeedTheModuleThatIsInstalledWithTheProgram) {
  std::filesystem::create_directory(folder.file("bin"));
  std::filesystem::copy_file(QUILLMERE_MESH_PROGRAM, folder.file("bin/quillmere-mesh"));
  folder.write("m.geo", square);
  support::RunOptions alone;
  alone.program = folder.file("bin/quillmere-mesh");
  const auto result = support::run_program(folder.path(), {"import", "m.geo", "case"}, alone);
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(support::starts_with(
      result.err, "quillmere-mesh: Gmsh cannot be loaded: " + folder.file("lib/quillmere/gmsh.so")))
      << result.err;
}
