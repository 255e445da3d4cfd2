// A case, its folder, and what quillmere-mesh says about it.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/Case.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"

class CheckTest : public testing::Test {
 protected:
  using json = nlohmann::json;

  support::RunResult mesh_tool(const std::vector<std::string>& arguments) {
    support::RunOptions options;
    options.program = QUILLMERE_MESH_PROGRAM;
    return support::run_program(folder.path(), arguments, options);
  }

  /// Writes the case and checks it, without the measurement. Whatever it says, the exit status of
  /// the check and of the simulator go together.
  void check() {
    c.write(folder);
    const support::RunResult result = mesh_tool({"check", ".", "--json", "--quick"});
    report = json::parse(result.out, nullptr, false);
    ASSERT_FALSE(report.is_discarded()) << result.out << result.err;
    status = result.status;
    EXPECT_EQ(status, report["errors"].empty() ? 0 : 1) << report.dump(2);
    EXPECT_EQ(report["accepted"], report["errors"].empty());
    EXPECT_EQ(status == 0, support::run_case(folder).status == 0) << report.dump(2);
  }

  /// The findings of a kind, "errors" or "warnings".
  std::vector<std::string> texts(const std::string& severity, const std::string& kind) const {
    std::vector<std::string> found;
    for (const json& finding : report[severity]) {
      if (finding["kind"] == kind) found.push_back(finding["text"]);
    }
    return found;
  }
  /// Checks the case, which is expected to have exactly one error, of this kind and with all parts.
  void expect_error(const std::string& kind, const std::vector<std::string>& parts) {
    expect_only("errors", kind, parts);
  }
  /// Checks the case, which is expected to have exactly one warning.
  void expect_warning(const std::string& kind, const std::vector<std::string>& parts) {
    expect_only("warnings", kind, parts);
    EXPECT_EQ(status, 0);
  }
  void expect_clean() {
    check();
    EXPECT_TRUE(report["errors"].empty() && report["warnings"].empty()) << report.dump(2);
  }

  /// A case that is recorded to its end.
  static support::Case recorded_case() {
    support::Case recorded;
    recorded.data["output"]["time step enveloppe of results"] = 0.01;
    return recorded;
  }

  /// Turns the case into one with a layer of sediment (m) in every cell, and friction.
  void use_sediments(double thickness) {
    c.data["model"]["name"] = "Bramsett";
    c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.001},
                                     {"sediments density", 2.65},
                                     {"sediments friction coefficient", 0.03},
                                     {"sediments porosity", 0.4}};
    c.data["model"]["conditions"]["initial sediments level"] = "sediment.txt";
    c.files["sediment.txt"] = c.per_cell(support::exact(thickness));
    c.add_friction(c.per_cell("0.03"));
  }

  /// A file of records under their count, with one record changed.
  static std::string with_record(const std::string& text, int index, const std::string& record) {
    std::vector<std::string> lines = support::lines(text);
    lines.at(static_cast<std::size_t>(index) + 1) = record;
    return joined(lines);
  }
  /// The same with one record more.
  static std::string with_more(const std::string& text, const std::string& record) {
    std::vector<std::string> lines = support::lines(text);
    lines[0] = std::to_string(lines.size());
    lines.push_back(record);
    return joined(lines);
  }
  /// The same without one record.
  static std::string without(const std::string& text, int index) {
    std::vector<std::string> lines = support::lines(text);
    lines.erase(lines.begin() + 1 + index);
    lines[0] = std::to_string(lines.size() - 1);
    return joined(lines);
  }
  static std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }

  support::TemporaryFolder folder;
  support::Case c = recorded_case();
  json report;
  int status = -1;

 private:
  void expect_only(const std::string& severity, const std::string& kind,
                   const std::vector<std::string>& parts) {
    check();
    ASSERT_EQ(report[severity].size(), 1U) << report.dump(2);
    EXPECT_EQ(report[severity][0]["kind"], kind);
    const std::string text = report[severity][0]["text"];
    for (const std::string& part : parts) {
      EXPECT_TRUE(support::contains(text, part)) << text << "\nlacks: " << part;
    }
  }
};
