#include "export/commands.hpp"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "case/keys.hpp"
#include "case/reference.hpp"
#include "export/CaseResults.hpp"
#include "export/crs.hpp"
#include "export/csv_writer.hpp"
#include "export/geotiff_writer.hpp"
#include "export/plot_command.hpp"
#include "export/quantities.hpp"
#include "export/ugrid_writer.hpp"
#include "export/vtu_writer.hpp"
#include "support/Error.hpp"
#include "utils/stop.hpp"

namespace exports {

namespace {

/// A command with its one argument, the case.
template <class Options>
CLI::App& add_command(CLI::App& app, const char* name, const char* summary, Options& options) {
  CLI::App& command = *app.add_subcommand(name, summary);
  command
      .add_option("CASE", options.case_name, "Case folder that holds data.json, or its data file")
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

/// Where the option was not given.
void take_crs_of(const CaseFiles& files, std::optional<Crs>& crs) {
  if (crs || !files.epsg) return;
  crs = find_crs(*files.epsg, files.data_file + ": \"" + cases::key("crs").path + '"');
}

std::string or_default(const std::string& given, const std::string& usual) {
  return given.empty() ? usual : given;
}

void tell(const std::string& output) { std::cout << output << "\n"; }

/// Says what an export leaves out: the run may still go on, or have ended early.
void warn_about_missing(const CaseResults& results) {
  if (results.snapshots.empty() && !results.has_envelope() && !results.has_maxima()) {
    results.snapshot_at(std::nullopt);  // refuses
  }
  if (!results.missing_snapshots.empty()) {
    utils::warn("snapshots not there: " + std::to_string(results.missing_snapshots.size()) +
                ", the first of them " + results.missing_snapshots.front() + ".");
  }
  if (!std::filesystem::exists(results.envelope_file())) {
    utils::warn("the envelope " + results.envelope_file() + " is not there.");
  }
  if (results.files.maxima && !std::filesystem::exists(*results.files.maxima)) {
    utils::warn("the maxima " + *results.files.maxima + " are not there.");
  }
}

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

}  // namespace

void add_netcdf_command(CLI::App& app) {
  struct Options : UgridOptions {
    std::string case_name;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = add_command(
      app, "netcdf", "All snapshots and the envelope as UGRID NetCDF, for QGIS", *options);
  add_crs_option(command, options->crs);
  command
      .add_option_function<std::string>(
          "--epoch",
          [options](const std::string& text) { options->epoch = *cases::epoch_of(text); },
          "Date and hour of the time 0 s, UTC, as in 2026-05-01T06:00:00Z (that of the case)")
      ->check([](const std::string& text) {
        return cases::epoch_of(text) ? ""
                                     : "found \"" + text + "\", expected " + cases::expected_epoch;
      });
  command.add_flag("--compress", options->is_compressed, "Smaller, slower: netCDF-4, deflated");
  command.add_option("-o,--output", options->output, "File (CASE/export/results.nc)");
  command.callback([options] {
    const CaseResults results(options->case_name);
    warn_about_missing(results);
    options->output = or_default(options->output, results.files.export_path("results.nc"));
    options->epoch = or_default(options->epoch, results.files.epoch);
    take_crs_of(results.files, options->crs);
    write_ugrid(results, *options);
    tell(options->output);
  });
}

void add_vtu_command(CLI::App& app) {
  struct Options : VtuOptions {
    std::string case_name;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command =
      add_command(app, "vtu", "A VTU file per snapshot and a PVD, for ParaView", *options);
  command.add_flag("--relief", options->has_relief, "Put the points on the bed, not at 0");
  command.add_option("-o,--output", options->output, "PVD file (CASE/export/results.pvd)");
  command.callback([options] {
    const CaseResults results(options->case_name);
    warn_about_missing(results);
    options->output = or_default(options->output, results.files.export_path("results.pvd"));
    write_vtu(results, *options);
    tell(options->output);
  });
}

void add_geotiff_command(CLI::App& app) {
  struct Options : GeotiffOptions {
    std::string case_name, field = "max_depth";
    std::optional<double> time, dry_depth;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = add_command(app, "geotiff", "One field as a raster", *options);
  command.add_option("--field", options->field, "What the pixels hold")
      ->check(CLI::IsMember(map_field_names()))
      ->capture_default_str();
  command.add_option("--resolution", options->resolution, "Side of a pixel, m")
      ->required()
      ->check(CLI::PositiveNumber);
  command.add_option("--time", options->time, "Time of the snapshot, s (the last one)");
  command.add_option("--threshold", options->dry_depth,
                     "Cells no deeper than this have no data, m (the case's zero depth)");
  add_crs_option(command, options->crs);
  command.add_option("-o,--output", options->output,
                     "File (CASE/export/FIELD.tif, with its time of a snapshot)");
  command.callback([options] {
    const CaseResults results(options->case_name);
    const MapField field = read_map_field(results, options->field, options->time,
                                          options->dry_depth.value_or(results.files.dry_depth));
    options->output =
        or_default(options->output, results.files.export_path(file_stem(field) + ".tif"));
    take_crs_of(results.files, options->crs);
    write_geotiff(results.mesh, field, *options);
    field.below_zero.tell();
    tell(options->output);
  });
}

void add_csv_command(CLI::App& app) {
  struct Options {
    std::string case_name, folder;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command =
      add_command(app, "csv", "Gauges, sections and maxima as tables with units", *options);
  command.add_option("-o,--output", options->folder, "Folder (CASE/export)");
  command.callback([options] {
    const CaseFiles files(options->case_name);
    if (!files.gauges && !files.sections && !files.maxima) {
      throw tools::Error(files.data_file + " asks for neither gauges nor discharges nor maxima.");
    }
    const auto write = [&](auto writer, const char* name) {
      const std::string output = options->folder.empty()
                                     ? files.export_path(name)
                                     : (std::filesystem::path(options->folder) / name).string();
      writer(files, output);
      tell(output);
    };
    if (files.gauges) {
      write(write_gauges_csv, "gauges.csv");
      write(write_gauge_points_csv, "gauge_points.csv");
    }
    if (files.sections) write(write_sections_csv, "sections.csv");
    if (files.maxima) write(write_maxima_csv, "maxima.csv");
  });
}

void add_plot_command(CLI::App& app) {
  struct Options : PlotOptions {
    std::string case_name;
  };
  using What = PlotOptions::What;
  auto options = std::make_shared<Options>();
  CLI::App& command = add_command(app, "plot", "Pictures: maps and curves", *options);
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
  command.add_option("--threshold", options->dry_depth,
                     "Cells no deeper than this are drawn dry, m (the case's zero depth)");
  command
      .add_option(
          "--classes", options->classes,
          "Bounds of classes for the map of a field, increasing, in its unit: each class has "
          "one colour")
      ->delimiter(',')
      ->type_name("B1,B2,...");
  command.add_option("--format", options->format, "Kind of picture")
      ->check(CLI::IsMember(picture_formats()))
      ->capture_default_str();
  command.add_option("--title", options->title, "Title (name of the run, and what is shown)");
  command.add_option("-o,--output", options->output,
                     "File (CASE/export/NAME.png), or folder of --all (CASE/export/pictures)");
  command.callback([options] {
    if (options->time && options->what != What::map) {
      throw CLI::ValidationError("--time", "is for the map of one field");
    }
    if (options->dry_depth && (options->what == What::gauges || options->what == What::sections)) {
      throw CLI::ValidationError("--threshold", "is for maps");
    }
    if (!options->classes.empty() && options->what != What::map) {
      throw CLI::ValidationError("--classes", "are for the map of one field");
    }
    if (std::adjacent_find(options->classes.begin(), options->classes.end(),
                           [](double a, double b) { return !(a < b); }) != options->classes.end()) {
      throw CLI::ValidationError("--classes", "expected bounds that increase");
    }
    if (options->what != What::all) take_format_of_name(*options);
    const CaseResults results(options->case_name);
    for (const std::string& picture : plot(results, *options)) tell(picture);
  });
}

}  // namespace exports
