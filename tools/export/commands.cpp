#include "export/commands.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>

#include "case/reference.hpp"
#include "export/CaseResults.hpp"
#include "export/common_options.hpp"
#include "export/csv_writer.hpp"
#include "export/geotiff_writer.hpp"
#include "export/quantities.hpp"
#include "export/ugrid_writer.hpp"
#include "export/vtu_writer.hpp"
#include "support/Error.hpp"
#include "utils/stop.hpp"

namespace exports {

namespace {

std::string or_default(const std::string& given, const std::string& usual) {
  return given.empty() ? usual : given;
}

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

}  // namespace

void add_netcdf_command(CLI::App& app) {
  struct Options : UgridOptions {
    std::string case_name;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command =
      add_command(app, "netcdf", "All snapshots and the envelope as UGRID NetCDF, for QGIS",
                  options->case_name);
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
  CLI::App& command = add_command(app, "vtu", "A VTU file per snapshot and a PVD, for ParaView",
                                  options->case_name);
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
  CLI::App& command = add_command(app, "geotiff", "One field as a raster", options->case_name);
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
  CLI::App& command = add_command(app, "csv", "Gauges, sections and maxima as tables with units",
                                  options->case_name);
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

}  // namespace exports
