// Imports meshes as users do, and runs the simulator on the cases.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"
#include "tools/mesh/SampleMesh.hpp"

namespace support {

using Words = std::vector<std::string>;

/// A folder with the sample mesh m.msh, on a slope.
class ImportTest : public testing::Test {
 protected:
  ImportTest() {
    sample.z = [](double x, double y) { return 0.1 * x + 0.02 * y * y; };
    folder.write("m.msh", sample.msh4(true));
  }

  RunResult import(Words words) {
    words.insert(words.begin(), "import");
    RunOptions options;
    options.program = QUILLMERE_MESH_PROGRAM;
    return run_program(folder.path(), words, options);
  }
  /// Imports m.msh into the folder "case"; nothing may go wrong.
  std::string import_well(Words words) {
    words.insert(words.begin(), {"m.msh", "case"});
    const auto result = import(words);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  /// The message of an import of m.msh that must end with a status.
  std::string import_badly(int status, Words words) {
    words.insert(words.begin(), {"m.msh", "case"});
    const auto result = import(words);
    EXPECT_EQ(result.status, status) << result.out;
    EXPECT_FALSE(folder.has("case/data.json"));
    return result.err;
  }
  /// Runs the case to its end, without a warning.
  void run_case() {
    const auto result = run_program(folder.file("case"), {"-f", "data.json", "-nodisplay"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
  }
  std::vector<std::string> lines(const std::string& name) {
    return support::lines(folder.read("case/" + name));
  }
  /// A column of a file of the case, header lines left out.
  std::vector<double> column(const std::string& name, std::size_t index, std::size_t n_headers) {
    std::vector<double> values;
    const auto rows = lines(name);
    for (std::size_t i = n_headers; i < rows.size(); ++i) {
      std::istringstream row(rows[i]);
      double value = 0.0;
      for (std::size_t k = 0; k <= index; ++k) row >> value;
      values.push_back(value);
    }
    return values;
  }
  nlohmann::json data() { return nlohmann::json::parse(folder.read("case/data.json")); }

  TemporaryFolder folder;
  SampleMesh sample;
};

}  // namespace support
