#include "export/common_options.hpp"

#include <CLI/CLI.hpp>
#include <iostream>

#include "case/keys.hpp"
#include "case/reference.hpp"

namespace exports {

CLI::App& add_command(CLI::App& app, const char* name, const char* summary,
                      std::string& case_name) {
  CLI::App& command = *app.add_subcommand(name, summary);
  command.add_option("CASE", case_name, "Case folder that holds data.json, or its data file")
      ->required();
  return command;
}

void add_crs_option(CLI::App& command, std::optional<Crs>& crs) {
  command
      .add_option_function<std::string>(
          "--crs",
          [&crs](const std::string& text) { crs = find_crs(*cases::epsg_of(text), "--crs"); },
          "Coordinate reference system, as in EPSG:32632 (that of the case)")
      ->check([](const std::string& text) {
        return cases::epsg_of(text) ? ""
                                    : "found \"" + text + "\", expected " + cases::expected_crs;
      })
      ->type_name("EPSG:n");
}

void take_crs_of(const CaseFiles& files, std::optional<Crs>& crs) {
  if (crs || !files.epsg) return;
  crs = find_crs(*files.epsg, files.data_file + ": \"" + cases::key("crs").path + '"');
}

void tell(const std::string& output) { std::cout << output << "\n"; }

}  // namespace exports
