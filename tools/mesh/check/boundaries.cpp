#include "mesh/check/boundaries.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "case/boundary_kinds.hpp"
#include "case/plausibility.hpp"
#include "mesh/check/checked_file.hpp"
#include "mesh/check/numbers.hpp"
#include "support/CaseNames.hpp"
#include "utils/counted.hpp"
#include "utils/stop.hpp"

namespace tools::check {

namespace {

/// The series of a file; null, and a finding, if it can't be read.
std::shared_ptr<const TimeSeries> read_series(const std::string& file, Findings& findings) {
  try {
    return std::make_shared<const TimeSeries>(file);
  } catch (const utils::FatalError& error) {
    findings.error("series", "series of a boundary: " + finding_text(error.what()));
    return nullptr;
  }
}

double value_at_start(const TimeSeries& series, double t0) {
  return series.value_at(t0, physics::interval_that_starts(series.samples(), 0, t0));
}

/// The highest level, or the discharge of largest size, that the run can meet.
double extreme_value(const Boundary& boundary) {
  if (!boundary.values) return boundary.first_value;
  const auto& values = boundary.values->values;
  return *std::max_element(values.begin(), values.end(), [&](double a, double b) {
    return boundary.kind->imposes_level() ? a < b : std::fabs(a) < std::fabs(b);
  });
}

/// The largest discharge outwards that the run can meet, m2/s.
double largest_outflow(const Boundary& boundary) {
  if (!boundary.values) return boundary.first_value;
  return *std::max_element(boundary.values->values.begin(), boundary.values->values.end());
}

std::string name_of(const Boundary& boundary) {
  const std::string what = boundary.series.empty() ? number(boundary.first_value) : boundary.series;
  return std::string("the ") + boundary.kind->name + " " + what + " (" +
         utils::counted(boundary.edges, "edge") + ")";
}

void check_coverage(const DataFile& data, const Boundary& boundary, Findings& findings) {
  const std::vector<double>& times = boundary.values->times;
  if (!data.has_steps()) return;
  if (times.front() > *data.t0) {
    findings.warning("series coverage", boundary.series + " begins at " + number(times.front()) +
                                            " s, after the run (" + number(*data.t0) +
                                            " s): its first interval is extrapolated backwards");
  }
  if (times.back() < *data.tend) {
    findings.warning("series coverage", boundary.series + " ends at " + number(times.back()) +
                                            " s, before the run (" + number(*data.tend) +
                                            " s): its last value holds from then on");
  }
}

void check_plausible(const DataFile& data, const Boundary& boundary, Findings& findings) {
  constexpr double largest_unit_discharge = 100.0;  // m2/s
  constexpr double largest_depth = 100.0;           // m
  const double value = extreme_value(boundary);
  if (boundary.kind->imposes_discharge()) {
    if (std::fabs(value) > largest_unit_discharge) {
      findings.warning("boundary value",
                       name_of(boundary) + " reaches " + number(value) +
                           " m2/s, expected at most 100: was the whole discharge given? it is per "
                           "metre of boundary");
    }
    findings.add_remark("boundary value",
                        plausibility::on_outflow(name_of(boundary), largest_outflow(boundary),
                                                 boundary.shallowest_water, data.zero_depth));
  }
  if (boundary.kind->imposes_level()) {
    if (value < boundary.lowest_bed) {
      findings.warning("boundary value",
                       name_of(boundary) + " stays below the bed of its cells (" +
                           number(boundary.lowest_bed) +
                           " m at the lowest): is it a depth? a level is expected");
    } else if (value - boundary.lowest_bed > largest_depth) {
      findings.warning("boundary value", name_of(boundary) + " reaches " +
                                             number(value - boundary.lowest_bed) +
                                             " m above the bed of its cells, expected at most 100");
    }
  }
}

/// The names of the edges that have one.
std::map<cases::Number, std::string> names_of_edges(Findings& findings) {
  std::map<cases::Number, std::string> names;
  try {
    for (const auto& [name, edges] : tools::read_case_names(".").boundaries) {
      for (const int edge : edges) names[edge] = name;
    }
  } catch (const utils::FatalError& error) {
    findings.warning("names", finding_text(error.what()));
  }
  return names;
}

/// Adds an edge group to the boundary of its name, if its discharge is a part of that one's.
bool joins(const Boundary& part, Boundary& whole) {
  if (part.name.empty() || part.name != whole.name || part.kind != whole.kind) return false;
  if (!part.kind->imposes_discharge() || !part.has_value || !whole.has_value) return false;
  const double discharge = part.discharge() + whole.discharge();
  whole.edges += part.edges;
  whole.length += part.length;
  whole.first_value = discharge / whole.length;
  return true;
}

}  // namespace

std::vector<Boundary> check_boundaries(const DataFile& data, const cases::Case& contents,
                                       const std::vector<CellValues>& cells, Findings& findings) {
  using Key = std::tuple<int, std::string, int, double>;
  std::map<Key, Boundary, std::greater<>> table;  // open ends, then walls, then series
  const cases::Mesh& mesh = contents.mesh;
  const std::map<cases::Number, std::string> names = names_of_edges(findings);
  for (const cases::Boundary& imposed : mesh.boundaries) {
    const auto named = names.find(imposed.edge);
    const std::string name = named != names.end() ? named->second : "";
    Boundary& boundary = table[{imposed.code, name, imposed.series, imposed.value}];
    const CellValues& cell = cells[cases::at(mesh.left[cases::at(imposed.edge)])];
    boundary.kind = cases::boundary_kind(imposed.code);
    boundary.name = name;
    ++boundary.edges;
    boundary.length += mesh.edge_of(imposed.edge).length;
    boundary.lowest_bed = std::min(boundary.lowest_bed, cell.bed);
    boundary.shallowest_water = std::min(boundary.shallowest_water, cell.depth);
  }

  std::vector<Boundary> boundaries;
  for (auto& [key, boundary] : table) {
    const int series = std::get<2>(key);
    if (series >= 0) {
      boundary.series = contents.series[cases::at(series)].file;
      boundary.values = read_series(boundary.series, findings);
      boundary.has_value = boundary.values && data.t0;
      if (boundary.has_value) boundary.first_value = value_at_start(*boundary.values, *data.t0);
    } else if (boundary.kind->has_value()) {
      boundary.has_value = true;
      boundary.first_value = std::get<3>(key);
    }
    if (boundary.has_value) check_plausible(data, boundary, findings);
    if (!boundaries.empty() && joins(boundary, boundaries.back())) continue;
    if (boundary.has_value && boundary.values) check_coverage(data, boundary, findings);
    boundaries.push_back(boundary);
  }
  return boundaries;
}

void check_series_files(const cases::Case& contents, Findings& findings) {
  for (const cases::Series& series : contents.series) read_series(series.file, findings);
}

}  // namespace tools::check
