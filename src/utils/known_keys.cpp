#include "utils/known_keys.hpp"

#include <algorithm>

#include "utils/edit_distance.hpp"

namespace utils {

namespace {

using Use = KnownKey::Use;

std::vector<KnownKey> make_known_keys() {
  return {
      {"", key::simulation_name, KeyType::text, Use::always},
      {"", key::start_time, KeyType::number, Use::always},
      {"", key::end_time, KeyType::number, Use::always},
      {"", key::cfl, KeyType::number, Use::always},
      {"", key::extensions, KeyType::section, Use::optional},
      {"", key::mesh, KeyType::section, Use::always},
      {section::mesh, key::nodes, KeyType::file, Use::always},
      {section::mesh, key::cells, KeyType::file, Use::always},
      {section::mesh, key::edges, KeyType::file, Use::always},
      {section::mesh, key::origin, KeyType::point, Use::optional},
      {"", key::model, KeyType::section, Use::always},
      {section::model, key::model_name, KeyType::text, Use::always},
      {section::model, key::flux_scheme, KeyType::text, Use::always},
      {section::model, key::zero_depth, KeyType::number, Use::optional, "0.0001 m"},
      {section::model, key::conditions, KeyType::section, Use::always},
      {section::conditions, key::initial_conditions, KeyType::file, Use::always},
      {section::conditions, key::fixed_bed_level, KeyType::file, Use::optional,
       "mean of the nodes of a cell"},
      {section::conditions, key::friction, KeyType::file, Use::optional, "no friction"},
      {section::conditions, key::sediments_level, KeyType::file, Use::sediments},
      {section::model, key::parameters, KeyType::section, Use::sediments},
      {section::parameters, key::mean_grain, KeyType::number, Use::sediments},
      {section::parameters, key::density, KeyType::number, Use::sediments},
      {section::parameters, key::sediments_friction, KeyType::number, Use::sediments},
      {section::parameters, key::porosity, KeyType::number, Use::sediments},
      {section::model, key::sources, KeyType::section, Use::always},
      {section::sources, key::rainfall, KeyType::file, Use::optional, "no rain"},
      {section::sources, key::hyetocells, KeyType::file, Use::with_other, key::rainfall},
      {section::sources, key::infiltration, KeyType::file, Use::optional, "no infiltration"},
      {section::sources, key::infiltracells, KeyType::file, Use::with_other, key::infiltration},
      {section::sources, key::initial_infiltration, KeyType::file, Use::optional, "0 m"},
      {"", key::output, KeyType::section, Use::always},
      {section::output, key::folder, KeyType::text, Use::always},
      {section::output, key::dt_enveloppe, KeyType::number, Use::always},
      {section::output, key::pictures, KeyType::file, Use::optional, "no snapshots"},
      {section::output, key::gauges, KeyType::file, Use::optional, "no gauges"},
      {section::output, key::discharges, KeyType::file, Use::optional, "no sections"},
  };
}

}  // namespace

const std::vector<KnownKey>& known_keys() {
  static const std::vector<KnownKey> keys = make_known_keys();
  return keys;
}

const KnownKey* nearest_key(const std::string& section, const std::string& name) {
  const KnownKey* nearest = nullptr;
  std::size_t smallest = least_strange_distance(name);
  for (const KnownKey& known : known_keys()) {
    const std::size_t distance = edit_distance(name, known.name);
    const bool nearer =
        distance < smallest || (distance == smallest && nearest != nullptr &&
                                nearest->section != section && known.section == section);
    if (!nearer) continue;
    smallest = distance;
    nearest = &known;
  }
  return nearest;
}

}  // namespace utils
