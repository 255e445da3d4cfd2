#include "export/quantities.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/Error.hpp"

namespace exports {

namespace {

using Part = Quantity::Part;
using WhenDry = Quantity::WhenDry;
using Of = const CaseResults&;
using At = const Snapshot&;
using Cell = std::size_t;

constexpr float nothing = std::numeric_limits<float>::quiet_NaN();

double bed(Of results, At s, Cell i) {
  return s.bed.empty() ? results.bed[i] : static_cast<double>(s.bed[i]);
}

/// What a case must have for its snapshots to have a quantity.
enum class Needs { water, sediment, infiltration };
/// What a quantity is for.
enum class For { datasets, maps, both };

struct Row {
  Needs needs;
  For use;
  Quantity quantity;
};

const std::vector<Row>& rows() {
  static const std::vector<Row> table = {
      {Needs::water,
       For::both,
       {"depth", "depth", "m", Part::scalar, WhenDry::left_off_maps,
        [](Of, At s, Cell i) { return s.h[i]; }}},
      {Needs::water,
       For::both,
       {"level", "water level", "m", Part::scalar, WhenDry::hidden,
        [](Of c, At s, Cell i) { return static_cast<float>(bed(c, s, i) + s.h[i]); }}},
      {Needs::water,
       For::datasets,
       {"velocity", "velocity", "m s-1", Part::x, WhenDry::hidden,
        [](Of, At s, Cell i) { return s.qx[i] / s.h[i]; }}},
      {Needs::water,
       For::datasets,
       {"velocity", "velocity", "m s-1", Part::y, WhenDry::hidden,
        [](Of, At s, Cell i) { return s.qy[i] / s.h[i]; }}},
      {Needs::water,
       For::maps,
       {"velocity", "velocity", "m s-1", Part::scalar, WhenDry::hidden,
        [](Of, At s, Cell i) { return std::hypot(s.qx[i], s.qy[i]) / s.h[i]; }}},
      {Needs::water,
       For::datasets,
       {"unit_discharge", "unit discharge", "m2 s-1", Part::x, WhenDry::shown,
        [](Of, At s, Cell i) { return s.qx[i]; }}},
      {Needs::water,
       For::datasets,
       {"unit_discharge", "unit discharge", "m2 s-1", Part::y, WhenDry::shown,
        [](Of, At s, Cell i) { return s.qy[i]; }}},
      {Needs::infiltration,
       For::both,
       {"infiltrated_depth", "infiltrated depth", "m", Part::scalar, WhenDry::shown,
        [](Of, At s, Cell i) { return s.infiltrated[i]; }}},
      {Needs::sediment,
       For::both,
       {"bed", "bed elevation", "m", Part::scalar, WhenDry::shown,
        [](Of, At s, Cell i) { return s.bed[i]; }}},
      {Needs::sediment,
       For::both,
       {"bed_change", "bed change", "m", Part::scalar, WhenDry::shown,
        [](Of c, At s, Cell i) { return static_cast<float>(s.bed[i] - c.bed[i]); }}},
      {Needs::sediment,
       For::both,
       {"sediment_thickness", "sediment thickness", "m", Part::scalar, WhenDry::shown,
        [](Of, At s, Cell i) { return s.hs[i]; }}},
      {Needs::sediment,
       For::datasets,
       {"bed_load", "bed load", "m2 s-1", Part::x, WhenDry::shown,
        [](Of, At s, Cell i) { return s.qsx[i]; }}},
      {Needs::sediment,
       For::datasets,
       {"bed_load", "bed load", "m2 s-1", Part::y, WhenDry::shown,
        [](Of, At s, Cell i) { return s.qsy[i]; }}},
  };
  return table;
}

bool has(const CaseFiles& files, Needs needs) {
  switch (needs) {
    case Needs::sediment:
      return files.has_sediment;
    case Needs::infiltration:
      return files.has_infiltration && !files.has_sediment;
    case Needs::water:
      break;
  }
  return true;
}

bool is_dry(float depth, double dry_depth) { return !(static_cast<double>(depth) > dry_depth); }

MapField of_envelope(const CaseResults& results, const std::string& name, double dry_depth) {
  std::optional<std::vector<float>> depth = results.max_depth();
  if (!depth) {
    throw tools::Error("The file " + results.files.result("enveloppe.txt") +
                       " is not there. Has the case been run?");
  }
  if (name == "max_level" && results.files.has_sediment) {
    throw tools::Error("max_level is not known where the bed moves: expected max_depth.");
  }
  MapField field{name, "largest depth", "m", std::nullopt, {}};
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

}  // namespace

std::vector<Quantity> dataset_quantities(const CaseFiles& files) {
  std::vector<Quantity> quantities;
  for (const Row& row : rows()) {
    if (row.use != For::maps && has(files, row.needs)) quantities.push_back(row.quantity);
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
    values[i] = hides && is_dry(snapshot.h[i], results.files.dry_depth)
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
  for (const Row& row : rows()) {
    if (row.use != For::datasets) names.push_back(row.quantity.name);
  }
  return names;
}

std::vector<std::string> snapshot_map_fields(const CaseFiles& files) {
  std::vector<std::string> names;
  for (const Row& row : rows()) {
    if (row.use != For::datasets && has(files, row.needs)) names.push_back(row.quantity.name);
  }
  return names;
}

MapField read_map_field(const CaseResults& results, const std::string& name,
                        std::optional<double> time, double dry_depth) {
  if (name == "max_depth" || name == "max_level") {
    if (time) throw tools::Error(name + " is that of the whole run: it has no time.");
    return of_envelope(results, name, dry_depth);
  }
  Snapshot snapshot;
  read_snapshot(results, results.snapshot_at(time), snapshot);
  return map_field(results, snapshot, name, dry_depth);
}

MapField map_field(const CaseResults& results, const Snapshot& snapshot, const std::string& name,
                   double dry_depth) {
  const auto row = std::find_if(rows().begin(), rows().end(), [&](const Row& r) {
    return r.use != For::datasets && r.quantity.name == name;
  });
  if (row == rows().end() || !has(results.files, row->needs)) {
    std::string known;
    for (const std::string& n : snapshot_map_fields(results.files)) known += ", " + n;
    throw tools::Error("The snapshots of " + results.files.folder + " have no " + name +
                       "; expected one of" + known.substr(1) + ".");
  }
  MapField field{name, row->quantity.long_name, row->quantity.unit, snapshot.time, {}};
  evaluate(row->quantity, results, snapshot, field.values);
  if (row->quantity.when_dry != WhenDry::shown) {
    for (std::size_t i = 0; i < field.values.size(); ++i) {
      if (is_dry(snapshot.h[i], dry_depth)) field.values[i] = nothing;
    }
  }
  return field;
}

}  // namespace exports
