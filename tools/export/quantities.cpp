#include "export/quantities.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>

#include "support/Error.hpp"

namespace exports {

namespace {

using fields::Field;
using For = Quantity::For;
using WhenDry = Quantity::WhenDry;

constexpr float nothing = std::numeric_limits<float>::quiet_NaN();

bool has(const CaseFiles& files, const Quantity& quantity) {
  return is_in_snapshots(info(quantity.source), files.has_sediment, files.has_infiltration);
}

bool is_dry(double depth, double dry_depth) { return !(depth > dry_depth); }

MapField of_envelope(const CaseResults& results, const std::string& name, double dry_depth) {
  MapField field{name, "largest depth", "m", std::nullopt, {}, {}};
  const std::optional<std::vector<double>> depth = results.max_depth(&field.below_zero);
  if (!depth) {
    const bool is_there = std::filesystem::exists(results.envelope_file());
    throw tools::Error("The file " + results.envelope_file() +
                       (is_there ? " is of an earlier run. Let the last one go on to its end."
                                 : " is not there. Has the case been run?"));
  }
  if (name == "max_level" && results.files.has_sediment) {
    throw tools::Error("max_level is not known where the bed moves: expected max_depth.");
  }
  if (name == "max_level") {
    field.long_name = "largest water level";
    field.values = max_level(results, *depth);
  } else {
    field.values.assign(depth->begin(), depth->end());
  }
  for (std::size_t i = 0; i < depth->size(); ++i) {
    if (is_dry((*depth)[i], dry_depth)) field.values[i] = nothing;
  }
  return field;
}

}  // namespace

std::vector<Quantity> dataset_quantities(const CaseFiles& files) {
  return fields::dataset_quantities(files.has_sediment, files.has_infiltration);
}

void evaluate(const Quantity& quantity, const CaseResults& results, const fields::Columns& columns,
              std::vector<float>& values) {
  fields::evaluate(quantity, {columns, results.bed, results.files.dry_depth}, values);
}

std::vector<float> max_level(const CaseResults& results, const std::vector<double>& max_depth) {
  fields::Columns columns;
  columns[Field::largest_depth] = max_depth;
  constexpr bool has_sediments = false;
  std::vector<float> level;
  evaluate(fields::dataset_largest_depths(has_sediments).back(), results, columns, level);
  return level;
}

std::vector<std::string> map_field_names() {
  std::vector<std::string> names = {"max_depth", "max_level"};
  for (const MaximaQuantity& quantity : maxima_quantities) names.emplace_back(quantity.name);
  for (const Quantity& quantity : fields::quantities_in_time()) {
    if (quantity.use != For::datasets) names.push_back(quantity.name);
  }
  return names;
}

std::vector<std::string> snapshot_map_fields(const CaseFiles& files) {
  std::vector<std::string> names;
  for (const Quantity& quantity : fields::quantities_in_time()) {
    if (quantity.use != For::datasets && has(files, quantity)) names.push_back(quantity.name);
  }
  return names;
}

std::string file_stem(const MapField& field) {
  if (!field.time) return field.name;
  nlohmann::json time = *field.time;
  if (*field.time == std::floor(*field.time)) time = static_cast<long>(*field.time);
  return field.name + "_" + time.dump() + "s";
}

MapField bed_at_start(const CaseResults& results) {
  MapField field{"bed", "bed elevation", "m", std::nullopt, {}, {}};
  for (const double level : results.bed) field.values.push_back(static_cast<float>(level));
  return field;
}

MapField read_map_field(const CaseResults& results, const std::string& name,
                        std::optional<double> time, double dry_depth) {
  const MaximaQuantity* const of_run = find_maxima_quantity(name);
  if (of_run != nullptr || name == "max_depth" || name == "max_level") {
    if (time) throw tools::Error(name + " is that of the whole run: it has no time.");
    return of_run != nullptr ? map_field(read_maxima(results), *of_run, dry_depth)
                             : of_envelope(results, name, dry_depth);
  }
  if (name == "bed" && !results.files.has_sediment) {
    if (time) throw tools::Error("The bed does not move: it has no time.");
    return bed_at_start(results);
  }
  Snapshot snapshot;
  read_snapshot(results, results.snapshot_at(time), snapshot);
  return map_field(results, snapshot, name, dry_depth);
}

MapField map_field(const MaximaTable& maxima, const MaximaQuantity& quantity, double dry_depth) {
  MapField field{quantity.name, quantity.long_name, quantity.unit,
                 std::nullopt,  maxima[quantity],   {}};
  for (std::size_t i = 0; i < field.values.size(); ++i) {
    if (is_dry(static_cast<double>(maxima.peak_depth()[i]), dry_depth)) field.values[i] = nothing;
  }
  return field;
}

MapField map_field(const CaseResults& results, const Snapshot& snapshot, const std::string& name,
                   double dry_depth) {
  const std::vector<Quantity>& known = fields::quantities_in_time();
  const auto quantity = std::find_if(known.begin(), known.end(), [&](const Quantity& q) {
    return q.use != For::datasets && q.name == name;
  });
  if (quantity == known.end() || !has(results.files, *quantity)) {
    std::string expected;
    for (const std::string& n : snapshot_map_fields(results.files)) expected += ", " + n;
    throw tools::Error("The snapshots of " + results.files.folder + " have no " + name +
                       "; expected one of" + expected.substr(1) + ".");
  }
  MapField field{name, quantity->long_name, quantity->unit, snapshot.time, {}, snapshot.below_zero};
  evaluate(*quantity, results, snapshot.columns, field.values);
  if (quantity->when_dry != WhenDry::shown) {
    const std::vector<double>& depths = snapshot.columns[Field::depth];
    for (std::size_t i = 0; i < field.values.size(); ++i) {
      if (is_dry(depths[i], dry_depth)) field.values[i] = nothing;
    }
  }
  return field;
}

std::vector<std::array<float, 2>> velocities(const CaseResults& results, const Snapshot& snapshot,
                                             double dry_depth) {
  std::vector<std::array<float, 2>> vectors(results.mesh.n_cells(), {nothing, nothing});
  std::vector<float> values;
  for (const Quantity& quantity : dataset_quantities(results.files)) {
    if (quantity.name != "velocity") continue;
    evaluate(quantity, results, snapshot.columns, values);
    const std::size_t part = quantity.part == Quantity::Part::y ? 1 : 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!is_dry(snapshot.columns[Field::depth][i], dry_depth)) vectors[i][part] = values[i];
    }
  }
  return vectors;
}

}  // namespace exports
