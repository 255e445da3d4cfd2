#include "mesh/known_keys.hpp"

#include <algorithm>
#include <cctype>
#include <numeric>

#include "utils/data_file_keys.hpp"

namespace tools {

namespace {

namespace key = utils::key;
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
  const std::string mesh = key::mesh;
  const std::string model = key::model;
  const std::string conditions = model + "/" + key::conditions;
  const std::string parameters = model + "/" + key::parameters;
  const std::string sources = model + "/" + key::sources;
  const std::string output = key::output;
  return {
      {"", key::simulation_name, KeyType::text, Use::always},
      {"", key::start_time, KeyType::number, Use::always},
      {"", key::end_time, KeyType::number, Use::always},
      {"", key::cfl, KeyType::number, Use::always},
      {"", key::extensions, KeyType::section, Use::optional},
      {"", mesh, KeyType::section, Use::always},
      {mesh, key::nodes, KeyType::text, Use::always},
      {mesh, key::cells, KeyType::text, Use::always},
      {mesh, key::edges, KeyType::text, Use::always},
      {"", model, KeyType::section, Use::always},
      {model, key::model_name, KeyType::text, Use::always},
      {model, key::flux_scheme, KeyType::text, Use::always},
      {model, key::zero_depth, KeyType::number, Use::optional},
      {model, key::conditions, KeyType::section, Use::always},
      {conditions, key::initial_conditions, KeyType::text, Use::always},
      {conditions, key::fixed_bed_level, KeyType::text, Use::optional},
      {conditions, key::friction, KeyType::text, Use::optional},
      {conditions, key::sediments_level, KeyType::text, Use::sediments},
      {model, key::parameters, KeyType::section, Use::sediments},
      {parameters, key::mean_grain, KeyType::number, Use::sediments},
      {parameters, key::density, KeyType::number, Use::sediments},
      {parameters, key::sediments_friction, KeyType::number, Use::sediments},
      {parameters, key::porosity, KeyType::number, Use::sediments},
      {model, key::sources, KeyType::section, Use::always},
      {sources, key::rainfall, KeyType::text, Use::optional},
      {sources, key::hyetocells, KeyType::text, Use::with_other, key::rainfall},
      {sources, key::infiltration, KeyType::text, Use::optional},
      {sources, key::infiltracells, KeyType::text, Use::with_other, key::infiltration},
      {sources, key::initial_infiltration, KeyType::text, Use::optional},
      {"", output, KeyType::section, Use::always},
      {output, key::folder, KeyType::text, Use::always},
      {output, key::dt_enveloppe, KeyType::number, Use::always},
      {output, key::pictures, KeyType::text, Use::optional},
      {output, key::gauges, KeyType::text, Use::optional},
      {output, key::discharges, KeyType::text, Use::optional},
  };
}

}  // namespace

const std::vector<KnownKey>& known_keys() {
  static const std::vector<KnownKey> keys = make_known_keys();
  return keys;
}

std::string suggestion_for(const std::string& section, const std::string& name) {
  const KnownKey* nearest = nullptr;
  std::size_t smallest = std::max<std::size_t>(2, name.size() / 3) + 1;
  for (const KnownKey& known : known_keys()) {
    std::size_t distance = edit_distance(lower_case(name), lower_case(known.name));
    // Of two alike, the one of the same section.
    const bool nearer =
        distance < smallest || (distance == smallest && nearest != nullptr &&
                                nearest->section != section && known.section == section);
    if (!nearer) continue;
    smallest = distance;
    nearest = &known;
  }
  if (nearest == nullptr) return "";
  if (nearest->section == section) return "did you mean \"" + nearest->name + "\"?";
  return "did you mean \"" + nearest->path() + "\"?";
}

}  // namespace tools
