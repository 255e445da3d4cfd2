#include "mesh/check/info_command.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>

#include "mesh/check/case_report.hpp"
#include "mesh/check/report_json.hpp"
#include "mesh/check/report_text.hpp"

namespace tools::check {

namespace {

struct InfoOptions {
  std::string path;
  bool json = false;
};

void info(const InfoOptions& options) {
  const CaseReport report = read_case(options.path);
  if (options.json) {
    using Json = nlohmann::ordered_json;
    std::cout << info_json(report).dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
  } else {
    write_info_text(std::cout, report);
  }
}

}  // namespace

void add_info_command(CLI::App& app) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App* const command = app.add_subcommand(
      "info",
      "Examples:\n"
      "  quillmere-mesh info my_case\n"
      "  quillmere-mesh info my_case --json\n"
      "\n"
      "Tells the size of a case: counts, extent, area, and the water in it at the start.");
  command
      ->add_option("CASE", options->path,
                   "Folder with a data.json and the files it names, or a data file whose files "
                   "are found from the working directory")
      ->required();
  command->add_flag("--json", options->json, "Write the facts as JSON");
  command->callback([options] { info(*options); });
}

}  // namespace tools::check
