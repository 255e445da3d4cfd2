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
using Part = Quantity::Part;
using WhenDry = Quantity::WhenDry;
using Of = const CaseResults&;
using At = const Snapshot&;
using Cell = std::size_t;

constexpr float nothing = std::numeric_limits<float>::quiet_NaN();

double bed(Of results, At s, Cell i) {
  const std::vector<float>& moved = s[Field::bed_level];
  return moved.empty() ? results.bed[i] : static_cast<double>(moved[i]);
}

float depth(At s, Cell i) { return s[Field::depth][i]; }
float discharge_x(At s, Cell i) { return s[Field::discharge_x][i]; }
float discharge_y(At s, Cell i) { return s[Field::discharge_y][i]; }

/// What a quantity is for.
enum class For { datasets, maps, both };

struct Row {
  Field source;  ///< without it in the snapshots there is no such quantity
  For use;
  Quantity quantity;
};

/// A field of the snapshots as it is.
template <Field field>
Row plain(const char* name, const char* long_name, Part part = Part::scalar,
          WhenDry when_dry = WhenDry::shown) {
  const std::string unit = info(field).unit;
  const For use = part == Part::scalar ? For::both : For::datasets;
  return {field,
          use,
          {name, long_name, unit == "m2/s" ? "m2 s-1" : unit, part, when_dry,
           [](Of, At s, Cell i) { return s[field][i]; }}};
}

const std::vector<Row>& rows() {
  static const std::vector<Row> table = {
      plain<Field::depth>("depth", "depth", Part::scalar, WhenDry::left_off_maps),
      {Field::depth,
       For::both,
       {"level", "water level", "m", Part::scalar, WhenDry::hidden,
        [](Of c, At s, Cell i) { return static_cast<float>(bed(c, s, i) + depth(s, i)); }}},
      {Field::depth,
       For::datasets,
       {"velocity", "velocity", "m s-1", Part::x, WhenDry::hidden,
        [](Of, At s, Cell i) { return discharge_x(s, i) / depth(s, i); }}},
      {Field::depth,
       For::datasets,
       {"velocity", "velocity", "m s-1", Part::y, WhenDry::hidden,
        [](Of, At s, Cell i) { return discharge_y(s, i) / depth(s, i); }}},
      {Field::depth,
       For::maps,
       {"velocity", "velocity", "m s-1", Part::scalar, WhenDry::hidden,
        [](Of, At s, Cell i) {
          return std::hypot(discharge_x(s, i), discharge_y(s, i)) / depth(s, i);
        }}},
      plain<Field::discharge_x>("unit_discharge", "unit discharge", Part::x),
      plain<Field::discharge_y>("unit_discharge", "unit discharge", Part::y),
      plain<Field::infiltrated_depth>("infiltrated_depth", "infiltrated depth"),
      plain<Field::bed_level>("bed", "bed elevation"),
      {Field::bed_level,
       For::both,
       {"bed_change", "bed change", "m", Part::scalar, WhenDry::shown,
        [](Of c, At s, Cell i) { return static_cast<float>(s[Field::bed_level][i] - c.bed[i]); }}},
      plain<Field::sediment_thickness>("sediment_thickness", "sediment thickness"),
      plain<Field::bed_load_x>("bed_load", "bed load", Part::x),
      plain<Field::bed_load_y>("bed_load", "bed load", Part::y),
  };
  return table;
}

bool has(const CaseFiles& files, const Row& row) {
  return is_in_snapshots(info(row.source), files.has_sediment, files.has_infiltration);
}

bool is_dry(float depth, double dry_depth) { return !(static_cast<double>(depth) > dry_depth); }

MapField of_envelope(const CaseResults& results, const std::string& name, double dry_depth) {
  MapField field{name, "largest depth", "m", std::nullopt, {}, {}};
  std::optional<std::vector<float>> depth = results.max_depth(&field.below_zero);
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
    field.values = *depth;
  }
  for (std::size_t i = 0; i < depth->size(); ++i) {
    if (is_dry((*depth)[i], dry_depth)) field.values[i] = nothing;
  }
  return field;
}

/// The bed of a case without sediment, which its snapshots do not have.
MapField bed_at_rest(const CaseResults& results) {
  MapField field{"bed", "bed elevation", "m", std::nullopt, {}, {}};
  for (const double level : results.bed) field.values.push_back(static_cast<float>(level));
  return field;
}

}  // namespace

std::vector<Quantity> dataset_quantities(const CaseFiles& files) {
  std::vector<Quantity> quantities;
  for (const Row& row : rows()) {
    if (row.use != For::maps && has(files, row)) quantities.push_back(row.quantity);
  }
  return quantities;
}

std::string variable_name(const Quantity& quantity) {
  switch (quantity.part) {
    case Part::x:
      return quantity.name + "_x";
    case Part::y:
      return quantity.name + "_y";
    case Part::scalar:
      break;
  }
  return quantity.name;
}

void evaluate(const Quantity& quantity, const CaseResults& results, const Snapshot& snapshot,
              std::vector<float>& values) {
  values.resize(results.mesh.n_cells());
  const bool hides = quantity.when_dry == WhenDry::hidden;
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = hides && is_dry(depth(snapshot, i), results.files.dry_depth)
                    ? nothing
                    : quantity.of_cell(results, snapshot, i);
  }
}

std::vector<float> max_level(const CaseResults& results, const std::vector<float>& max_depth) {
  std::vector<float> level(max_depth.size(), nothing);
  for (std::size_t i = 0; i < level.size(); ++i) {
    if (is_dry(max_depth[i], results.files.dry_depth)) continue;
    level[i] = static_cast<float>(results.bed[i] + static_cast<double>(max_depth[i]));
  }
  return level;
}

std::vector<std::string> map_field_names() {
  std::vector<std::string> names = {"max_depth", "max_level"};
  for (const MaximaQuantity& quantity : maxima_quantities) names.emplace_back(quantity.name);
  for (const Row& row : rows()) {
    if (row.use != For::datasets) names.push_back(row.quantity.name);
  }
  return names;
}

std::vector<std::string> snapshot_map_fields(const CaseFiles& files) {
  std::vector<std::string> names;
  for (const Row& row : rows()) {
    if (row.use != For::datasets && has(files, row)) names.push_back(row.quantity.name);
  }
  return names;
}

std::string file_stem(const MapField& field) {
  if (!field.time) return field.name;
  nlohmann::json time = *field.time;
  if (*field.time == std::floor(*field.time)) time = static_cast<long>(*field.time);
  return field.name + "_" + time.dump() + "s";
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
    return bed_at_rest(results);
  }
  Snapshot snapshot;
  read_snapshot(results, results.snapshot_at(time), snapshot);
  return map_field(results, snapshot, name, dry_depth);
}

MapField map_field(const MaximaTable& maxima, const MaximaQuantity& quantity, double dry_depth) {
  MapField field{quantity.name, quantity.long_name, quantity.unit,
                 std::nullopt,  maxima[quantity],   {}};
  for (std::size_t i = 0; i < field.values.size(); ++i) {
    if (is_dry(maxima.peak_depth()[i], dry_depth)) field.values[i] = nothing;
  }
  return field;
}

MapField map_field(const CaseResults& results, const Snapshot& snapshot, const std::string& name,
                   double dry_depth) {
  const auto row = std::find_if(rows().begin(), rows().end(), [&](const Row& r) {
    return r.use != For::datasets && r.quantity.name == name;
  });
  if (row == rows().end() || !has(results.files, *row)) {
    std::string known;
    for (const std::string& n : snapshot_map_fields(results.files)) known += ", " + n;
    throw tools::Error("The snapshots of " + results.files.folder + " have no " + name +
                       "; expected one of" + known.substr(1) + ".");
  }
  MapField field{name, row->quantity.long_name, row->quantity.unit, snapshot.time,
                 {},   snapshot.below_zero};
  evaluate(row->quantity, results, snapshot, field.values);
  if (row->quantity.when_dry != WhenDry::shown) {
    for (std::size_t i = 0; i < field.values.size(); ++i) {
      if (is_dry(depth(snapshot, i), dry_depth)) field.values[i] = nothing;
    }
  }
  return field;
}

}  // namespace exports
