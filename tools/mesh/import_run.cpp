#include "mesh/import_run.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <vector>

#include "case/recorded_end.hpp"
#include "mesh/import_features.hpp"
#include "mesh/import_fields.hpp"
#include "mesh/numbers.hpp"
#include "mesh/raster.hpp"
#include "mesh/run_options.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"

namespace mesh_import {

namespace {

void set_times(const ImportOptions& options, Case& contents, std::ostream& out) {
  constexpr double usual_end = 3600.0;
  double end = std::numeric_limits<double>::infinity();
  for (const Boundary& boundary : contents.boundaries.list) {
    if (!boundary.series.times.empty()) end = std::min(end, boundary.series.times.back());
  }
  contents.end = options.end.value_or(std::isfinite(end) && end > 0.0 ? end : usual_end);
  if (end < contents.end) {
    out << "The shortest series ends at " << shown(end)
        << " s, before the run does; its last value holds.\n";
  }
}

/// Before the end: no step reaches the end itself.
void check_snapshots(const Case& contents) {
  if (contents.snapshots.empty() || contents.snapshots.back() < contents.end) return;
  throw tools::Error("--snapshots: found " + shown(contents.snapshots.back()) +
                     ", expected times before the run ends, at " + shown(contents.end) + " s.");
}

/// Every interval, and once more shortly before the end.
std::vector<double> snapshots_every(double interval, const Case& contents) {
  constexpr double most_snapshots = 1e6;
  if (contents.end / interval > most_snapshots) {
    throw tools::Error("--interval: more than a million snapshots until " + shown(contents.end) +
                       " s; expected a longer one.");
  }
  std::vector<double> times;
  for (double time = 0.0; time < contents.end * (1.0 - 1e-9);) {
    times.push_back(time);
    time = static_cast<double>(times.size()) * interval;
  }
  constexpr double apart = 0.01;  // s, as the names of snapshots are
  const double last = cases::interval_up_to_the_end({0.0, contents.end}, contents.end);
  if (last >= times.back() + apart) times.push_back(last);
  return times;
}

}  // namespace

void set_outputs(std::optional<double> asked_interval, Case& contents, std::ostream& out) {
  constexpr double usual_intervals = 10.0, recordings_per_interval = 10.0;
  const double interval = asked_interval.value_or(contents.end / usual_intervals);
  contents.envelope_interval = cases::interval_up_to_the_end({0.0, contents.end}, interval);
  contents.recording_interval =
      cases::interval_up_to_the_end({0.0, contents.end}, interval / recordings_per_interval);
  out << "The run ends at " << shown(contents.end) << " s, with ";
  if (contents.snapshots.empty()) {
    contents.snapshots = snapshots_every(interval, contents);
    out << "snapshots every " << shown(interval) << " s and at " << shown(contents.snapshots.back())
        << " s,";
  } else {
    check_snapshots(contents);
    out << utils::counted(contents.snapshots.size(), "snapshot") << " before it";
  }
  out << " and the envelope every " << shown(contents.envelope_interval) << " s.\n";
}

namespace {

/// The scheme that was asked for, or the usual one for the case.
void set_scheme(const ImportOptions& options, Case& contents, std::ostream& out) {
  const bool has_sediments = !contents.sediment.empty();
  if (options.scheme.empty()) {
    contents.scheme = has_sediments ? cases::Scheme::lhllc : cases::Scheme::hll2;
  } else {
    contents.scheme = cases::find_scheme(options.scheme)->scheme;
  }
  if (has_sediments && !cases::kind_of(contents.scheme).with_sediments) {
    throw tools::Error("--scheme " + options.scheme +
                       " does not go with --sediment; expected LHLLC or " +
                       cases::positive_scheme(true).name + ".");
  }
  out << "The flux scheme is " << cases::kind_of(contents.scheme).name << ".\n";
}

void expect_all_inside(const std::vector<Gauge>& gauges,
                       const std::vector<std::optional<Node>>& places) {
  std::string outside;
  std::size_t n_outside = 0;
  for (std::size_t i = 0; i < gauges.size(); ++i) {
    if (places[i]) continue;
    outside += (n_outside++ > 0 ? ", " : "") + shown_point(gauges[i].place.x, gauges[i].place.y);
  }
  if (n_outside == 0) return;
  throw tools::Error(
      n_outside == 1
          ? "--gauge: the point " + outside + " lies in no cell; expected one inside of the mesh."
          : "--gauge: " + std::to_string(n_outside) + " points lie in no cell: " + outside +
                "; expected points inside of the mesh.");
}

/// Brings those of the command line into cells in which the simulator finds them.
void settle_gauges(Case& contents, std::ostream& out) {
  std::vector<std::optional<Node>> places;
  for (const Gauge& gauge : contents.gauges) {
    places.push_back(place_gauge(contents.mesh, gauge.place));
  }
  expect_all_inside(contents.gauges, places);
  for (std::size_t i = 0; i < places.size(); ++i) {
    Node& gauge = contents.gauges[i].place;
    const Node& placed = *places[i];
    if (placed.x != gauge.x || placed.y != gauge.y) {
      out << "Moved the gauge at " << shown_point(gauge.x, gauge.y)
          << ", on the border of cells, to " << shown_point(placed.x, placed.y) << ".\n";
    }
    gauge = placed;
  }
}

/// Where the options and the drawn points say, or else in the lowest cell.
void place_gauges(const ImportOptions& options, Case& contents, std::ostream& out) {
  settle_gauges(contents, out);
  add_drawn_gauges(options, contents, out);
  if (!contents.gauges.empty()) return;
  const std::vector<double> levels = bed_of_cells(contents);
  const auto lowest = std::min_element(levels.begin(), levels.end()) - levels.begin();
  const Cell& cell = contents.mesh.cells[static_cast<std::size_t>(lowest)];
  const Node place = point_inside(contents.mesh, cell);
  contents.gauges.push_back({place, "lowest cell"});
  out << "A gauge stands in the lowest cell, at " << shown_point(place.x, place.y) << ".\n";
}

/// Where and when the case takes place, as far as it is known.
void set_reference(const ImportOptions& options, Case& contents, std::ostream& out) {
  if (options.epsg) require_known_system(*options.epsg, "--crs");
  contents.epoch = options.epoch;
  if (!contents.mesh.epsg) return;
  out << "The coordinate reference system is EPSG:" << *contents.mesh.epsg
      << (options.epsg ? ".\n" : ", as of the terrain.\n");
}

}  // namespace

void import_run(const ImportOptions& options, Case& contents, std::ostream& out) {
  contents.name =
      options.name.empty() ? std::filesystem::path(options.mesh).stem().string() : options.name;
  contents.courant = options.courant;
  contents.zero_depth = options.zero_depth;
  contents.arrival_depth = options.maxima;
  set_reference(options, contents, out);
  set_scheme(options, contents, out);
  set_times(options, contents, out);
  set_outputs(options.interval, contents, out);
  place_gauges(options, contents, out);
}

}  // namespace mesh_import
