// VTU and PVD, read back with meshio.
#include "tools/export/ExportTest.hpp"

using Vtu = ExportTest;

TEST_F(Vtu, EverySnapshotIsThereToItsSixDigits) {
  simulate(flood_case());
  EXPECT_EQ(run_well({"vtu", "."}).out, "./export/results.pvd\n");
  const std::vector<std::string> snapshots = {"out/pic_0_00.txt", "out/pic_0_50.txt",
                                              "out/pic_1_25.txt"};
  for (std::size_t t = 0; t < snapshots.size(); ++t) {
    const std::string file = "export/results_000" + std::to_string(t) + ".vtu";
    EXPECT_EQ(read_values({"vtu", file, "depth"}), column(snapshots[t], 3, true));
    EXPECT_EQ(read_values({"vtu", file, "unit_discharge", "0"}), column(snapshots[t], 4, true));
    EXPECT_EQ(read_values({"vtu", file, "unit_discharge", "1"}), column(snapshots[t], 5, true));
    EXPECT_EQ(read_values({"vtu", file, "infiltrated_depth"}), column(snapshots[t], 6, true));
  }
  EXPECT_EQ(read_values({"vtu", "export/results_envelope.vtu", "max_depth"}),
            column("out/enveloppe.txt", 3, false));
}

TEST_F(Vtu, TheCollectionNamesFilesOfAnyName) {
  simulate(flood_case());
  run_well({"vtu", ".", "-o", "a&b<\".pvd"});
  EXPECT_TRUE(support::contains(folder.read("a&b<\".pvd"), "file=\"a&#38;b&#60;&#34;_0000.vtu\""));
  EXPECT_TRUE(folder.has("a&b<\"_0000.vtu"));
}

TEST_F(Vtu, OverSandTheBedAndTheSedimentAreThere) {
  simulate(sand_case());
  run_well({"vtu", "."});
  const std::string file = "export/results_0001.vtu";
  EXPECT_EQ(read_values({"vtu", file, "bed"}), column("out/pic_0_25.txt", 2, true));
  EXPECT_EQ(read_values({"vtu", file, "sediment_thickness"}), column("out/pic_0_25.txt", 6, true));
  EXPECT_EQ(read_values({"vtu", file, "bed_load", "0"}), column("out/pic_0_25.txt", 7, true));
}

TEST_F(Vtu, TheMeshIsThatOfTheCase) {
  support::Case c;
  c.nx = c.ny = 1;
  c.bed = [](double x, double) { return 7.0 + x; };
  c.add_snapshots({0.0});
  simulate(c);
  run_well({"vtu", "."});
  using Values = std::vector<std::string>;
  EXPECT_EQ(read_values({"vtu", "export/results_0000.vtu", "points"}),
            (Values{"0", "0", "0", "1", "0", "0", "0", "1", "0", "1", "1", "0"}));
  EXPECT_EQ(read_values({"vtu", "export/results_0000.vtu", "cells"}),
            (Values{"0", "1", "3", "0", "3", "2"}));
  run_well({"vtu", ".", "--relief"});
  EXPECT_EQ(read_values({"vtu", "export/results_0000.vtu", "points"}),
            (Values{"0", "0", "7", "1", "0", "8", "0", "1", "7", "1", "1", "8"}));
}

TEST_F(Vtu, TheMeshStandsWhereItWasBeforeAnOriginWasTaken) {
  support::Case c;
  c.nx = c.ny = 1;
  c.data["mesh"]["origin"] = {612000.0, 523500.0};
  c.add_snapshots({0.0});
  simulate(c);
  run_well({"vtu", "."});
  using Values = std::vector<std::string>;
  EXPECT_EQ(read_values({"vtu", "export/results_0000.vtu", "points"}),
            (Values{"612000", "523500", "0", "612001", "523500", "0", "612000", "523501", "0",
                    "612001", "523501", "0"}));
}

TEST_F(Vtu, ADryCellHasNoLevelAndNoVelocity) {
  simulate(flood_case());
  run_well({"vtu", "."});
  const std::string file = "export/results_0000.vtu";
  const auto level = read_values({"vtu", file, "level"});
  const auto u = read_values({"vtu", file, "velocity", "0"});
  const auto depth = column("out/pic_0_00.txt", 3, true);
  int dry = 0;
  for (std::size_t i = 0; i < depth.size(); ++i) {
    if (std::stod(depth[i]) > 0.001) continue;
    ++dry;
    EXPECT_EQ(level[i], "nan");
    EXPECT_EQ(u[i], "0");  // arrows and stream lines need a number
  }
  EXPECT_GT(dry, 0);
}

TEST_F(Vtu, TheCollectionPutsTheFilesInTime) {
  simulate(flood_case());
  run_well({"vtu", ".", "--output", "view/flood.pvd"});
  EXPECT_EQ(folder.read("view/flood.pvd"),
            "<VTKFile type=\"Collection\" version=\"0.1\">\n<Collection>\n"
            "<DataSet timestep=\"0\" group=\"\" part=\"0\" file=\"flood_0000.vtu\"/>\n"
            "<DataSet timestep=\"0.5\" group=\"\" part=\"0\" file=\"flood_0001.vtu\"/>\n"
            "<DataSet timestep=\"1.25\" group=\"\" part=\"0\" file=\"flood_0002.vtu\"/>\n"
            "</Collection>\n</VTKFile>\n");
  EXPECT_TRUE(folder.has("view/flood_0002.vtu"));
}
