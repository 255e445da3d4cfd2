// Gauges and sections as CSV.
#include "tools/export/ExportTest.hpp"

namespace {

/// A result table's rows with commas between their values, and nothing for nan.
std::string with_commas(const std::string& table, bool has_header) {
  std::string text;
  const std::vector<std::string> rows = support::lines(table);
  for (std::size_t i = has_header ? 1 : 0; i < rows.size(); ++i) {
    std::string line;
    for (const std::string& value : support::split(rows[i], '\t')) {
      if (!value.empty()) line += (line.empty() ? "" : ",") + (value == "nan" ? "" : value);
    }
    text += line + "\n";
  }
  return text;
}

}  // namespace

using Csv = ExportTest;

TEST_F(Csv, GaugesHaveAHeaderWithUnitsAndTheSameNumbers) {
  simulate(flood_case());
  EXPECT_EQ(run_well({"csv", "."}).out,
            "./export/gauges.csv\n./export/gauge_points.csv\n./export/sections.csv\n");
  const std::string header =
      "time (s),gauge 1 depth (m),gauge 1 unit discharge x (m2/s),gauge 1 unit discharge y (m2/s)"
      ",gauge 2 depth (m),gauge 2 unit discharge x (m2/s),gauge 2 unit discharge y (m2/s)"
      ",gauge 3 depth (m),gauge 3 unit discharge x (m2/s),gauge 3 unit discharge y (m2/s)\n";
  const std::string table = folder.read("export/gauges.csv");
  EXPECT_EQ(table, header + with_commas(folder.read("out/gauges.txt"), true));
  EXPECT_EQ(support::occurrences(table, ",,,\n"), 5);  // the third gauge lies in no cell
}

TEST_F(Csv, GaugesHaveTheirPlaces) {
  simulate(flood_case());
  run_well({"csv", ".", "-o", "tables"});
  EXPECT_EQ(folder.read("tables/gauge_points.csv"),
            "gauge,x (m),y (m)\n1,612000.35,5235000.55\n2,612005.2,5235002.45\n3,0,0\n");
}

TEST_F(Csv, SectionsHaveAHeaderWithUnitsAndTheSameNumbers) {
  simulate(flood_case());
  run_well({"csv", "."});
  EXPECT_EQ(folder.read("export/sections.csv"),
            "time (s),section 1 discharge (m3/s),section 2 discharge (m3/s)\n" +
                with_commas(folder.read("sections.txt"), false));
}

TEST_F(Csv, TellsTheNamesThatTheCaseHas) {
  simulate(flood_case());
  folder.write("names.json",
               R"({"gauges": ["pier, \"old\"", "", "quay"], "sections": ["bridge", "weir"]})");
  run_well({"csv", "."});
  const std::string gauges = folder.read("export/gauges.csv");
  EXPECT_TRUE(gauges.starts_with("time (s),\"gauge 1 (pier, \"\"old\"\") depth (m)\",")) << gauges;
  EXPECT_TRUE(support::contains(gauges, ",gauge 2 depth (m),gauge 2 unit"));
  EXPECT_EQ(folder.read("export/gauge_points.csv"),
            "gauge,x (m),y (m),name\n1,612000.35,5235000.55,\"pier, \"\"old\"\"\"\n"
            "2,612005.2,5235002.45,\n3,0,0,quay\n");
  EXPECT_TRUE(folder.read("export/sections.csv")
                  .starts_with("time (s),section 1 (bridge) discharge (m3/s),section 2 (weir) "
                               "discharge (m3/s)\n"));
}

TEST_F(Csv, LeavesOutTheNamesOfAnotherList) {
  simulate(flood_case());
  folder.write("names.json", R"({"gauges": ["pier"], "sections": []})");
  run_well({"csv", "."});
  EXPECT_FALSE(support::contains(folder.read("export/gauges.csv"), "pier"));
  folder.write("names.json", "{");
  EXPECT_TRUE(support::contains(run({"csv", "."}).err, "names.json: found no names of a case"));
}

TEST_F(Csv, ATableThatCannotBeReadToItsEndIsAnError) {
  simulate(flood_case());
  std::filesystem::remove(folder.file("out/gauges.txt"));
  // A file that opens, and whose first byte cannot be read.
  std::filesystem::create_symlink("/proc/self/mem", folder.file("out/gauges.txt"));
  const support::RunResult result = run({"csv", "."});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillmere-export: The file ./out/gauges.txt couldn't be read to its end: the system "
            "reports an error.\n");
  EXPECT_FALSE(folder.has("export/gauges.csv"));
  EXPECT_FALSE(folder.has("export/gauges.csv.part"));
}

TEST_F(Csv, ACaseWithoutGaugesAndSectionsIsRefused) {
  simulate(support::Case());
  const support::RunResult result = run({"csv", "."});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillmere-export: ./data.json asks for neither gauges nor discharges nor maxima.\n");
}

TEST_F(Csv, GaugesStandWhereTheyWereBeforeAnOriginWasTaken) {
  support::Case c;
  c.data["mesh"]["origin"] = {612000.0, 5235000.0};
  c.add_gauges({{0.35, 0.55}}, 0.5);
  simulate(c);
  run_well({"csv", "."});
  EXPECT_EQ(folder.read("export/gauge_points.csv"), "gauge,x (m),y (m)\n1,612000.35,5235000.55\n");
}

TEST_F(Csv, AnOriginThatIsNoPointIsRefused) {
  support::Case c;
  c.add_gauges({{0.35, 0.55}}, 0.5);
  for (const char* const origin : {"[1]", "[1, 2, 3]", "\"1,2\"", "[1, \"2\"]"}) {
    c.data["mesh"]["origin"] = nlohmann::json::parse(origin);
    simulate(c);
    const support::RunResult result = run({"csv", "."});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(support::contains(result.err, "incorrect format in the datafile: origin"))
        << origin;
  }
}
