#include "export/plot_command.hpp"

#include <filesystem>

#include "export/MaximaTable.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"

namespace exports {

namespace {

using What = PlotOptions::What;

/// The pictures of one call, and where they go.
class Pictures {
 public:
  Pictures(const CaseResults& results, const PlotOptions& options)
      : results_(results), options_(options), job_(results, options) {}

  void add_map(const std::string& name) {
    const MapField field = read_map_field(results_, name, options_.time, job_.dry_depth());
    if (!options_.has_arrows) {
      job_.add_map(field, add_output(file_stem(field)));
      return;
    }
    if (!field.time) {
      throw tools::Error("Arrows show the flow of a snapshot: " + name + " has none.");
    }
    Snapshot snapshot;
    read_snapshot(results_, results_.snapshot_at(field.time), snapshot);
    job_.add_map(field, add_output(file_stem(field)), &snapshot);
  }
  void add_gauges() { job_.add_gauges(add_output("gauges")); }
  void add_sections() { job_.add_sections(add_output("sections")); }
  /// The envelope, the maxima, every snapshot, every curve, of what the case has.
  void add_all() {
    if (results_.has_envelope()) {
      add_map_of_run("max_depth");
      if (!results_.files.has_sediment) add_map_of_run("max_level");
    }
    if (results_.has_maxima()) {
      const MaximaTable maxima = read_maxima(results_);
      for (const MaximaQuantity& quantity : maxima_quantities) {
        job_.add_map(map_field(maxima, quantity, job_.dry_depth()), add_output(quantity.name));
      }
    }
    add_snapshots();
    if (results_.files.gauges) add_gauges();
    if (results_.files.sections) add_sections();
    if (outputs_.empty()) {
      throw tools::Error("No result of " + results_.files.data_file +
                         " is there. Has the case been run?");
    }
  }

  std::vector<std::string> draw() {
    job_.draw();
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
      job_.folder().put_in_place(picture(i), outputs_[i]);
    }
    return outputs_;
  }

 private:
  void add_map_of_run(const std::string& name) {
    job_.add_map(read_map_field(results_, name, std::nullopt, job_.dry_depth()), add_output(name));
  }
  void add_snapshots() {
    Snapshot snapshot;
    for (const SnapshotFile& file : results_.snapshots) {
      read_snapshot(results_, file, snapshot);
      for (const char* name : {"depth", "level", "velocity", "bed_change"}) {
        if (std::string(name) == "bed_change" && !results_.files.has_sediment) continue;
        const MapField field = map_field(results_, snapshot, name, job_.dry_depth());
        job_.add_map(field, add_output(file_stem(field)), &snapshot);
      }
    }
  }

  /// Name of the picture in the folder of the drawing.
  std::string picture(std::size_t index) const {
    return "picture_" + std::to_string(index) + "." + options_.format;
  }
  /// Adds a picture, refusing early what could not be written; its name for the script.
  std::string add_output(const std::string& name) {
    const std::string file = name + "." + options_.format;
    if (options_.what == What::all) {
      const std::string folder =
          options_.output.empty() ? results_.files.export_path("pictures") : options_.output;
      outputs_.push_back((std::filesystem::path(folder) / file).string());
    } else {
      outputs_.push_back(options_.output.empty() ? results_.files.export_path(file)
                                                 : options_.output);
    }
    tools::prepare_place(outputs_.back());
    return picture(outputs_.size() - 1);
  }

  const CaseResults& results_;
  const PlotOptions& options_;
  DrawingJob job_;
  std::vector<std::string> outputs_;
};

}  // namespace

std::vector<std::string> plot(const CaseResults& results, const PlotOptions& options) {
  Pictures pictures(results, options);
  switch (options.what) {
    case What::map:
      pictures.add_map(options.field);
      break;
    case What::gauges:
      pictures.add_gauges();
      break;
    case What::sections:
      pictures.add_sections();
      break;
    case What::all:
      pictures.add_all();
      break;
  }
  return pictures.draw();
}

}  // namespace exports
