#include "case/DataFileReader.hpp"

#include <algorithm>
#include <type_traits>

#include "case/nearest_key.hpp"
#include "case/reference.hpp"
#include "utils/json_file.hpp"

namespace utils {

using cases::Key;
using cases::key;

DataFileReaderException::DataFileReaderException(std::string message, std::string key)
    : text_(std::move(message) + std::move(key)) {}

DataFileReader::DataFileReader(const std::string& path)
    : Reader(path), document_(parse_json(stream_, name_)) {}

template <class T>
bool DataFileReader::validateKey(const json& object, const std::string& name) const {
  if (!object.contains(name)) {
    throw DataFileReaderException("Error. The following key couldn't be found in the datafile: ",
                                  name);
  }
  read_.insert(&object.at(name));
  if constexpr (std::is_same_v<T, json>) return true;  // every value is one, and may be large
  try {
    object.at(name).get<T>();
  } catch (const json::exception&) {
    throw DataFileReaderException("Error. The following key has incorrect format in the datafile: ",
                                  name);
  }
  return true;
}

const nlohmann::json& DataFileReader::section_at(std::string_view path) const {
  const json* section = &document_;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string name(path.substr(0, end));
    validateKey<json>(*section, name);
    section = &section->at(name);
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return *section;
}

bool DataFileReader::has(const Key& key) const {
  return section_at(key.section()).contains(std::string(key.name()));
}

template <class T>
T DataFileReader::value_of(const Key& key) const {
  const json& section = section_at(key.section());
  const std::string name(key.name());
  validateKey<T>(section, name);
  return section.at(name).get<T>();
}

template <class Read>
auto DataFileReader::understood(const Key& key, const std::string& expected, const Read& read) const
    -> decltype(read(std::string())) {
  if (!has(key)) return {};
  const auto text = value_of<std::string>(key);
  auto value = read(text);
  if (value) return value;
  throw DataFileReaderException("Error. ", '"' + std::string(key.path) + "\": found \"" + text +
                                               "\", expected " + expected + ".");
}

std::string DataFileReader::result_name(const Key& key) const {
  std::string name = value_of<std::string>(key);
  if (!name.empty()) return name;
  throw DataFileReaderException("Error. ", cases::empty_result_name(key) + ".");
}

std::optional<std::string> DataFileReader::file(const Key& key) const {
  const auto is_asked_for = [&] {
    switch (key.use) {
      case Key::Use::always:
        return true;
      case Key::Use::sediments:
        return is_sediments();
      case Key::Use::optional:
        return has(key);
      case Key::Use::with_other:
        return has(*cases::find_key(key.section(), cases::last_name_of(key.other)));
    }
    return false;
  };
  if (!is_asked_for()) return {};
  return value_of<std::string>(key);
}

// --- The run ------------------------------------------------------------------------------------

std::string DataFileReader::get_simulation_name() const {
  return value_of<std::string>(key("name"));
}

double DataFileReader::get_start_time() const { return value_of<double>(key("t0")); }

double DataFileReader::get_end_time() const { return value_of<double>(key("tend")); }

double DataFileReader::get_CFL() const { return value_of<double>(key("CFL")); }

std::optional<int> DataFileReader::get_epsg() const {
  return understood(key("crs"), cases::expected_crs, cases::epsg_of);
}

std::string DataFileReader::get_epoch() const {
  return understood(key("epoch"), cases::expected_epoch, cases::epoch_of)
      .value_or(cases::usual_epoch);
}

// --- Mesh ---------------------------------------------------------------------------------------

std::string DataFileReader::get_nodes_file() const {
  return value_of<std::string>(key("mesh/nodes"));
}

std::string DataFileReader::get_cells_file() const {
  return value_of<std::string>(key("mesh/cells"));
}

std::string DataFileReader::get_edges_file() const {
  return value_of<std::string>(key("mesh/edges"));
}

std::array<double, 2> DataFileReader::get_mesh_origin() const {
  constexpr const Key& origin = key("mesh/origin");
  if (!has(origin)) return {0.0, 0.0};
  if (section_at(origin.section()).at(std::string(origin.name())).size() != 2) {
    throw DataFileReaderException("Error. The following key has incorrect format in the datafile: ",
                                  std::string(origin.name()));
  }
  return value_of<std::array<double, 2>>(origin);
}

// --- Model --------------------------------------------------------------------------------------

std::string DataFileReader::get_model_name() const {
  return value_of<std::string>(key("model/name"));
}

std::string DataFileReader::get_flux_scheme_name() const {
  return value_of<std::string>(key("model/flux scheme"));
}

double DataFileReader::get_zero_depth_value() const {
  constexpr const Key& zero_depth = key("model/zero depth value");
  return has(zero_depth) ? value_of<double>(zero_depth) : cases::default_number(zero_depth);
}

// --- Conditions ---------------------------------------------------------------------------------

std::string DataFileReader::get_initial_hydrodynamic_conditions_file() const {
  return value_of<std::string>(key("model/conditions/initial conditions"));
}

bool DataFileReader::is_imposed_fixed_bed_level() const {
  return has(key("model/conditions/fixed bed level"));
}

std::string DataFileReader::get_fixed_bed_level_file() const {
  return value_of<std::string>(key("model/conditions/fixed bed level"));
}

bool DataFileReader::is_imposed_friction() const { return has(key("model/conditions/friction")); }

std::string DataFileReader::get_friction_file() const {
  return value_of<std::string>(key("model/conditions/friction"));
}

// --- Sediments ----------------------------------------------------------------------------------

bool DataFileReader::is_sediments() const { return get_model_name() == cases::sediment_model; }

bool DataFileReader::is_imposed_sediments_level() const {
  get_sediments_level_file();
  return true;
}

std::string DataFileReader::get_sediments_level_file() const {
  is_sediments();
  return value_of<std::string>(key("model/conditions/initial sediments level"));
}

bool DataFileReader::is_sediments_parameters() const {
  is_sediments();
  section_at(key("model/parameters").path);
  return true;
}

double DataFileReader::parameter(const Key& key) const {
  is_sediments();
  return value_of<double>(key);
}

double DataFileReader::get_sediments_mean_grain() const {
  return parameter(key("model/parameters/sediments mean grain diameter"));
}

double DataFileReader::get_sediments_density() const {
  return parameter(key("model/parameters/sediments density"));
}

double DataFileReader::get_sediments_friction() const {
  return parameter(key("model/parameters/sediments friction coefficient"));
}

double DataFileReader::get_sediments_porosity() const {
  return parameter(key("model/parameters/sediments porosity"));
}

// --- Sources ------------------------------------------------------------------------------------

bool DataFileReader::is_rainfall() const { return has(key("model/sources/rainfall")); }

std::string DataFileReader::get_rainfall_file() const {
  return value_of<std::string>(key("model/sources/rainfall"));
}

std::string DataFileReader::get_hyetocells_file() const {
  return value_of<std::string>(key("model/sources/hyetocells"));
}

bool DataFileReader::is_infiltration() const { return has(key("model/sources/infiltration")); }

std::string DataFileReader::get_infiltration_file() const {
  return value_of<std::string>(key("model/sources/infiltration"));
}

std::string DataFileReader::get_infiltracells_file() const {
  return value_of<std::string>(key("model/sources/infiltracells"));
}

bool DataFileReader::is_initial_infiltration() const {
  return has(key("model/sources/initial infiltration"));
}

std::string DataFileReader::get_initial_infiltration_file() const {
  return value_of<std::string>(key("model/sources/initial infiltration"));
}

// --- Extensions and outputs ---------------------------------------------------------------------

bool DataFileReader::is_extensions() const { return has(key("extensions")); }

std::string DataFileReader::get_output_folder_path() const {
  return value_of<std::string>(key("output/folder"));
}

double DataFileReader::get_dt_enveloppe() const {
  return value_of<double>(key("output/time step enveloppe of results"));
}

std::optional<std::string> DataFileReader::get_final_state_file() const {
  constexpr const Key& file = key("output/final state");
  if (!has(file)) return {};
  return result_name(file);
}

bool DataFileReader::is_maxima() const {
  constexpr const Key& maxima = key("output/maxima of flow");
  if (!has(maxima)) return false;
  if (section_at(maxima.path).is_object()) return true;
  throw DataFileReaderException("Error. The following key has incorrect format in the datafile: ",
                                std::string(maxima.name()));
}

std::string DataFileReader::get_maxima_file() const {
  return result_name(key("output/maxima of flow/file"));
}

double DataFileReader::get_arrival_depth() const {
  constexpr const Key& arrival_depth = key("output/maxima of flow/arrival depth");
  const double depth =
      has(arrival_depth) ? value_of<double>(arrival_depth) : cases::default_number(arrival_depth);
  if (const auto fault = cases::fault_of_arrival_depth(depth)) {
    throw DataFileReaderException("Error. ", *fault + ".");
  }
  return depth;
}

bool DataFileReader::is_pictures() const { return has(key("output/snapshots of flow")); }

std::string DataFileReader::get_pictures_file() const {
  return value_of<std::string>(key("output/snapshots of flow"));
}

std::optional<std::string> DataFileReader::get_results_file() const {
  constexpr const Key& file = key("output/results");
  if (!has(file)) return {};
  return result_name(file);
}

bool DataFileReader::is_double_results() const {
  return understood(key("output/results precision"), cases::expected_precision,
                    cases::double_precision_of)
      .value_or(false);
}

bool DataFileReader::is_gauges() const { return has(key("output/gauges")); }

std::string DataFileReader::get_gauges_file() const {
  return value_of<std::string>(key("output/gauges"));
}

bool DataFileReader::is_discharge_check() const { return has(key("output/discharges")); }

std::string DataFileReader::get_discharge_file() const {
  return value_of<std::string>(key("output/discharges"));
}

// --- What became of the keys --------------------------------------------------------------------

void DataFileReader::add_uses_of(const json& object, const std::string& section,
                                 KeyUses& uses) const {
  for (const auto& [name, value] : object.items()) {
    const std::string path = cases::path_of(section, name);
    if (read_.count(&value) == 0) {
      if (cases::find_key(section, name) != nullptr) {
        uses.unused.push_back(path);
      } else {
        const Key* const nearest = cases::nearest_key(section, name);
        uses.ignored.push_back({path, nearest != nullptr ? nearest->path : ""});
      }
    } else if (value.is_object()) {
      add_uses_of(value, path, uses);
    } else {
      uses.read.push_back(path);
    }
  }
}

KeyUses DataFileReader::key_uses() const {
  KeyUses uses;
  if (!document_.is_object()) return uses;
  add_uses_of(document_, "", uses);
  for (const Key& key : cases::keys) {
    const std::string value = cases::default_of(key);
    const auto stands = [&](std::string_view path) {
      return document_.contains(json::json_pointer("/" + std::string(path)));
    };
    if (value.empty() || stands(key.path)) continue;
    const Key* const section = cases::section_of(key);
    const bool is_asked_for =
        section == nullptr || section->use != Key::Use::optional || stands(section->path);
    if (!is_asked_for) continue;
    uses.defaulted.push_back({key.path, value});
  }
  return uses;
}

}  // namespace utils
