// The examples, shortened, by the positive schemes.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"

namespace {

using json = nlohmann::json;

const std::filesystem::path examples = std::filesystem::path(QUILLMERE_SOURCE_DIR) / "examples";

class Examples : public testing::TestWithParam<const char*> {
 protected:
  /// The report of the first tenth of the example by a scheme.
  json report_of(const char* scheme) const {
    const support::TemporaryFolder folder;
    for (const auto& file : std::filesystem::directory_iterator(examples / GetParam())) {
      if (file.is_regular_file()) std::filesystem::copy(file, folder.path());
    }
    std::filesystem::create_directory(folder.file("out"));
    json data = json::parse(folder.read("data.json"));
    data["model"]["flux scheme"] = scheme;
    data["tend"] = 0.1 * data["tend"].get<double>();
    folder.write("data.json", data.dump());
    const support::RunResult result = support::run_program(
        folder.path(), {"-f", "data.json", "-nodisplay", "--report", "report.json"});
    EXPECT_EQ(result.status, 0) << result.err;
    return json::parse(folder.read("report.json"));
  }
};

}  // namespace

TEST_P(Examples, KeepTheirWaterByThePositiveSchemes) {
#ifdef QUILLMERE_SANITIZED
  if (GetParam() == std::string("meandering_valley")) {
    GTEST_SKIP() << "shorter examples run the same code";
  }
#endif
  for (const char* const scheme : {"HLL1", "HLL2"}) {
    SCOPED_TRACE(scheme);
    const json report = report_of(scheme);
    EXPECT_GT(report["steps"]["computed"], 100);
    EXPECT_EQ(report["below_zero"]["cells_at_end"], 0);
    EXPECT_TRUE(report["below_zero"]["first_seen"].is_null());
    EXPECT_EQ(report["given_out_by_soils_m3"], 0.0);
    EXPECT_LE(std::fabs(report["water"]["relative_error"].get<double>()), 1e-13);
  }
}

INSTANTIATE_TEST_SUITE_P(OfWater, Examples,
                         testing::Values("flume_dam_break", "lake_at_rest", "meandering_valley"),
                         [](const auto& of) { return std::string(of.param); });
