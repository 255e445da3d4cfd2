// The commands that draw.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "export/commands.hpp"
#include "export/common_options.hpp"
#include "export/drawing_options.hpp"
#include "export/plot_command.hpp"
#include "export/report_command.hpp"

namespace exports {

namespace {

using What = PlotOptions::What;

std::vector<std::string> picture_formats() { return {"png", "svg", "pdf"}; }

/// The ending of a picture's name tells its format; one that tells another is wrong usage.
void take_format_of_name(PlotOptions& options) {
  const std::string extension =
      CLI::detail::to_lower(std::filesystem::path(options.output).extension().string());
  if (extension.empty()) return;
  const std::vector<std::string> formats = picture_formats();
  if (std::find(formats.begin(), formats.end(), extension.substr(1)) == formats.end()) {
    throw CLI::ValidationError("--output", "found \"" + options.output +
                                               "\", expected a name that ends with .png, .svg or "
                                               ".pdf");
  }
  options.format = extension.substr(1);
}

/// Options that say nothing about what is drawn are wrong usage.
void expect_use_of_all(const PlotOptions& options) {
  const auto expect = [](bool is_used, const char* option, const char* use) {
    if (!is_used) throw CLI::ValidationError(option, use);
  };
  const bool is_map = options.what == What::map;
  const bool has_maps = is_map || options.what == What::all;
  const bool has_classes = options.has_logarithmic_classes || !options.classes.empty();
  expect(!options.time || is_map, "--time", "is for the map of one field");
  expect(!options.dry_depth || has_maps, "--threshold", "is for maps");
  expect(!options.extent || has_maps, "--extent", "is for maps");
  expect(!options.has_arrows || has_maps, "--arrows", "are for maps");
  expect(!options.crs || has_maps, "--crs", "is for maps");
  expect(options.has_places || has_maps, "--no-gauges", "is for maps");
  expect(!has_classes || is_map, "--classes", "are for the map of one field");
  expect(!options.range || is_map, "--range", "is for the map of one field");
  expect(!options.range || options.classes.empty(), "--range", "does not go with given classes");
  expect(!options.range || !options.has_logarithmic_classes || (*options.range)[0] > 0.0, "--range",
         "has to begin above 0 where classes are logarithmic");
  for (const char* field : {"level", "max_level", "peak_level", "bed", "bed_change"}) {
    expect(!options.has_logarithmic_classes || options.field != field, "--classes",
           "cannot be logarithmic where values may be below 0");
  }
}

}  // namespace

void add_plot_command(CLI::App& app) {
  struct Options : PlotOptions {
    std::string case_name;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = add_command(app, "plot", "Pictures: maps and curves", options->case_name);
  CLI::App& what = *command.add_option_group("What to draw");
  what.require_option(0, 1);
  what.add_option("--field", options->field, "Map of a field")
      ->check(CLI::IsMember(map_field_names()))
      ->capture_default_str();
  what.add_flag_callback(
      "--gauges", [options] { options->what = What::gauges; }, "Curves of the gauges");
  what.add_flag_callback(
      "--sections", [options] { options->what = What::sections; }, "Curves of the sections");
  what.add_flag_callback(
      "--all", [options] { options->what = What::all; },
      "A folder of pictures: the envelope, every snapshot, the curves");
  command.add_option("--time", options->time, "Time of the snapshot, s (the last one)");
  add_map_options(command, *options);
  add_colour_options(command, *options);
  command.add_flag("--arrows", options->has_arrows, "Arrows of the flow, on maps of snapshots");
  command.add_option("--format", options->format, "Kind of picture")
      ->check(CLI::IsMember(picture_formats()))
      ->capture_default_str();
  command.add_option("--title", options->title, "Title (name of the run, and what is shown)");
  command.add_option("-o,--output", options->output,
                     "File (CASE/export/NAME.png), or folder of --all (CASE/export/pictures)");
  command.callback([options] {
    expect_use_of_all(*options);
    if (options->what != What::all) take_format_of_name(*options);
    const CaseResults results(options->case_name);
    take_crs_of(results.files, options->crs);
    for (const std::string& picture : plot(results, *options)) tell(picture);
  });
}

void add_report_command(CLI::App& app) {
  struct Options : ReportOptions {
    std::string case_name;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = add_command(
      app, "report", "One HTML file: the case, its run, maps and curves", options->case_name);
  command.add_option("FILE", options->output, "The report (CASE/export/report.html)");
  command.add_option("--run-report", options->run_report,
                     "What the run wrote by --report (CASE/report.json, where it is there)");
  add_map_options(command, *options);
  command.callback([options] {
    options->has_arrows = true;
    options->has_titles = false;  // captions tell more
    const CaseResults results(options->case_name);
    take_crs_of(results.files, options->crs);
    tell(write_report(results, *options));
  });
}

}  // namespace exports
