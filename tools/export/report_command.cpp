#include "export/report_command.hpp"

#include <filesystem>

#include "export/MaximaTable.hpp"
#include "export/case_facts.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "support/read_file.hpp"

namespace exports {

namespace {

using nlohmann::json;

constexpr char page[] = "report.html";

/// A member of a part of a document; null where there is none.
json member_of(const json& document, const char* part, const std::string& name) {
  const auto found = document.find(part);
  return found != document.end() && found->is_object() ? found->value(name, json()) : json();
}

/// Collects what the page shows.
class Report {
 public:
  Report(const CaseResults& results, const ReportOptions& options)
      : results_(results), options_(options), job_(results, options) {
    job_.document()["report"] = json{{"page", page},
                                     {"version", QUILLMERE_VERSION},
                                     {"dry_depth", job_.dry_depth()},
                                     {"case", case_facts(results)},
                                     {"log", results.log.text()},
                                     {"earlier_results", results.earlier_results},
                                     {"missing_snapshots", results.missing_snapshots},
                                     {"missing", json::object()}};
    job_.folder().save("center_x", results.mesh.center_x);
    job_.folder().save("center_y", results.mesh.center_y);
  }

  void add_everything() {
    add_map(bed_at_start(results_));
    add_run();
    add_maps_of_run();
    add_last_snapshot();
    add_curves();
  }
  void write(const std::string& output) {
    tools::prepare_place(output);
    job_.draw();
    job_.folder().put_in_place(page, output);
  }

 private:
  json& report() { return job_.document()["report"]; }
  /// What is not there: a sentence in its place.
  template <class Part>
  void try_part(const char* name, const Part& part) {
    try {
      part();
    } catch (const tools::Error& error) {
      report()["missing"][name] = error.what();
    }
  }
  void add_map(const MapField& field, const Snapshot* snapshot = nullptr) {
    job_.add_map(field, field.name + ".png", snapshot);
  }

  void add_maps_of_run() {
    try_part("max_depth", [this] {
      add_map(read_map_field(results_, "max_depth", std::nullopt, job_.dry_depth()));
    });
    if (!results_.files.maxima) return;
    try_part("maxima", [this] {
      const MaximaTable maxima = read_maxima(results_);
      for (const char* name : {"peak_speed", "hazard", "arrival_time"}) {
        add_map(map_field(maxima, *find_maxima_quantity(name), job_.dry_depth()));
      }
    });
  }
  void add_last_snapshot() {
    if (!results_.files.snapshot_times) return;
    try_part("snapshot", [this] {
      Snapshot snapshot;
      read_snapshot(results_, results_.snapshot_at(std::nullopt), snapshot);
      for (const char* name : {"depth", "velocity", "bed_change"}) {
        if (std::string(name) == "bed_change" && !results_.files.has_sediment) continue;
        add_map(map_field(results_, snapshot, name, job_.dry_depth()), &snapshot);
      }
    });
  }
  void add_curves() {
    if (results_.files.gauges) try_part("gauges", [this] { job_.add_gauges("gauges.svg"); });
    if (results_.files.sections)
      try_part("sections", [this] { job_.add_sections("sections.svg"); });
  }

  /// What the run told by --report: that of the option must be one, that of the usual name may be.
  void add_run() {
    if (!options_.run_report.empty()) {
      report()["run"] = read_run(options_.run_report);
      return;
    }
    const std::string usual =
        (std::filesystem::path(results_.files.folder) / "report.json").string();
    std::error_code ignored;
    if (!std::filesystem::exists(usual, ignored)) return;
    try_part("run", [&] {
      if (results_.log.is_earlier_report(usual)) {
        throw tools::Error(usual + " is of an earlier run.");
      }
      const json run = read_run(usual);
      expect_times_of_case(run, usual);
      report()["run"] = run;
    });
  }
  json read_run(const std::string& file) const {
    const json run = json::parse(tools::read_file(file), nullptr, false);
    if (!run.is_object() || !run.contains("outcome")) {
      throw tools::Error(file +
                         ": found no report of a run, expected what the simulator writes "
                         "by --report.");
    }
    const json cells = member_of(run, "execution", "cells");
    if (!cells.is_null() && cells != results_.mesh.n_cells()) {
      throw tools::Error(file + " is of a run with " + cells.dump() + " cells, expected " +
                         std::to_string(results_.mesh.n_cells()) + ".");
    }
    return run;
  }

  /// Refuses the report of a run before the case got another start or end.
  void expect_times_of_case(const json& run, const std::string& file) {
    const json& model = report()["case"]["model"];
    for (const auto& [name, of_case] :
         {std::pair{"start", model["t_start"]}, std::pair{"end", model["t_end"]}}) {
      const json time = member_of(run, "time", name + std::string("_s"));
      if (!time.is_number() || time == of_case) continue;
      throw tools::Error(file + " is of an earlier run, whose " + name + " is at " + time.dump() +
                         " s: that of the case is at " + of_case.dump() + " s.");
    }
  }

  const CaseResults& results_;
  const ReportOptions& options_;
  DrawingJob job_;
};

}  // namespace

std::string write_report(const CaseResults& results, const ReportOptions& options) {
  const std::string output =
      options.output.empty() ? results.files.export_path("report.html") : options.output;
  Report report(results, options);
  report.add_everything();
  report.write(output);
  return output;
}

}  // namespace exports
