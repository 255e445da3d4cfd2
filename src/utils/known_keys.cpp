#include "utils/known_keys.hpp"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace utils {

namespace {

using Use = KnownKey::Use;

std::string lower_case(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

/// Levenshtein's distance: the least number of characters to insert, delete or replace.
std::size_t edit_distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

std::vector<KnownKey> make_known_keys() {
  return {
      {"", key::simulation_name, KeyType::text, Use::always},
      {"", key::start_time, KeyType::number, Use::always},
      {"", key::end_time, KeyType::number, Use::always},
      {"", key::cfl, KeyType::number, Use::always},
      {"", key::extensions, KeyType::section, Use::optional},
      {"", key::mesh, KeyType::section, Use::always},
      {section::mesh, key::nodes, KeyType::text, Use::always},
      {section::mesh, key::cells, KeyType::text, Use::always},
      {section::mesh, key::edges, KeyType::text, Use::always},
      {"", key::model, KeyType::section, Use::always},
      {section::model, key::model_name, KeyType::text, Use::always},
      {section::model, key::flux_scheme, KeyType::text, Use::always},
      {section::model, key::zero_depth, KeyType::number, Use::optional, "0.0001 m"},
      {section::model, key::conditions, KeyType::section, Use::always},
      {section::conditions, key::initial_conditions, KeyType::text, Use::always},
      {section::conditions, key::fixed_bed_level, KeyType::text, Use::optional,
       "mean of the nodes of a cell"},
      {section::conditions, key::friction, KeyType::text, Use::optional, "no friction"},
      {section::conditions, key::sediments_level, KeyType::text, Use::sediments},
      {section::model, key::parameters, KeyType::section, Use::sediments},
      {section::parameters, key::mean_grain, KeyType::number, Use::sediments},
      {section::parameters, key::density, KeyType::number, Use::sediments},
      {section::parameters, key::sediments_friction, KeyType::number, Use::sediments},
      {section::parameters, key::porosity, KeyType::number, Use::sediments},
      {section::model, key::sources, KeyType::section, Use::always},
      {section::sources, key::rainfall, KeyType::text, Use::optional, "no rain"},
      {section::sources, key::hyetocells, KeyType::text, Use::with_other, key::rainfall},
      {section::sources, key::infiltration, KeyType::text, Use::optional, "no infiltration"},
      {section::sources, key::infiltracells, KeyType::text, Use::with_other, key::infiltration},
      {section::sources, key::initial_infiltration, KeyType::text, Use::optional, "0 m"},
      {"", key::output, KeyType::section, Use::always},
      {section::output, key::folder, KeyType::text, Use::always},
      {section::output, key::dt_enveloppe, KeyType::number, Use::always},
      {section::output, key::pictures, KeyType::text, Use::optional, "no snapshots"},
      {section::output, key::gauges, KeyType::text, Use::optional, "no gauges"},
      {section::output, key::discharges, KeyType::text, Use::optional, "no sections"},
  };
}

}  // namespace

const std::vector<KnownKey>& known_keys() {
  static const std::vector<KnownKey> keys = make_known_keys();
  return keys;
}

const KnownKey* nearest_key(const std::string& section, const std::string& name) {
  const KnownKey* nearest = nullptr;
  std::size_t smallest = std::max<std::size_t>(2, name.size() / 3) + 1;
  for (const KnownKey& known : known_keys()) {
    const std::size_t distance = edit_distance(lower_case(name), lower_case(known.name));
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
