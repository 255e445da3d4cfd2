#include "mesh/check/check_command.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>

#include "mesh/check/case_report.hpp"
#include "mesh/check/report_json.hpp"
#include "mesh/check/report_text.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"

namespace tools::check {

namespace {

struct CheckOptions {
  std::string path;
  bool json = false;
  bool quick = false;
};

void check(const CheckOptions& options) {
  const CaseReport report = check_case(options.path, !options.quick);
  if (options.json) {
    using Json = nlohmann::ordered_json;
    std::cout << check_json(report).dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
  } else {
    write_check_text(std::cout, report);
  }
  const long errors = report.findings.count(Severity::error);
  if (errors > 0) throw Error(options.path + ": " + utils::counted(errors, "error"));
}

}  // namespace

void add_check_command(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* const command = app.add_subcommand(
      "check",
      "Examples:\n"
      "  quillmere-mesh check my_case\n"
      "  quillmere-mesh check my_case --json > report.json\n"
      "  quillmere-mesh check scenarios/flood.json --quick\n"
      "\n"
      "Reads a whole case and reports everything that is wrong or suspicious in it, errors first.\n"
      "Ends with status 1 if the simulator would refuse the case.");
  command
      ->add_option("CASE", options->path,
                   "Folder with a data.json and the files it names, or a data file whose files "
                   "are found from the working directory")
      ->required();
  command->add_flag("--json", options->json, "Write the report as JSON");
  command->add_flag("--quick", options->quick,
                    "Leave out the measurement, for which the run is started for a second");
  command->callback([options] { check(*options); });
}

}  // namespace tools::check
