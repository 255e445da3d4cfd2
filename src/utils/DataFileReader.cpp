#include "utils/DataFileReader.hpp"

#include <type_traits>

#include "utils/data_file_keys.hpp"
#include "utils/json_file.hpp"
#include "utils/known_keys.hpp"

namespace utils {

DataFileReaderException::DataFileReaderException(std::string message, std::string key)
    : text_(std::move(message) + std::move(key)) {}

DataFileReader::DataFileReader(const std::string& path)
    : Reader(path), document_(parse_json(stream_, name_)) {}

template <class T>
bool DataFileReader::validateKey(const json& object, const std::string& key) const {
  if (!object.contains(key)) {
    throw DataFileReaderException("Error. The following key couldn't be found in the datafile: ",
                                  key);
  }
  read_.insert(&object.at(key));
  if constexpr (std::is_same_v<T, json>) return true;  // every value is one, and may be large
  try {
    object.at(key).get<T>();
  } catch (const json::exception&) {
    throw DataFileReaderException("Error. The following key has incorrect format in the datafile: ",
                                  key);
  }
  return true;
}

const nlohmann::json& DataFileReader::enclosing(const json& object, const std::string& key) const {
  validateKey<json>(object, key);
  return object.at(key);
}

const nlohmann::json& DataFileReader::conditions() const {
  return enclosing(enclosing(document_, key::model), key::conditions);
}

const nlohmann::json& DataFileReader::sources() const {
  return enclosing(enclosing(document_, key::model), key::sources);
}

const nlohmann::json& DataFileReader::parameters() const {
  is_sediments();
  return enclosing(enclosing(document_, key::model), key::parameters);
}

template <class T>
T DataFileReader::leaf(const json& object, const std::string& key) const {
  validateKey<T>(object, key);
  return object.at(key).get<T>();
}

// --- The run ------------------------------------------------------------------------------------

std::string DataFileReader::get_simulation_name() const {
  return leaf<std::string>(document_, key::simulation_name);
}

double DataFileReader::get_start_time() const { return leaf<double>(document_, key::start_time); }

double DataFileReader::get_end_time() const { return leaf<double>(document_, key::end_time); }

double DataFileReader::get_CFL() const { return leaf<double>(document_, key::cfl); }

// --- Mesh ---------------------------------------------------------------------------------------

std::string DataFileReader::get_nodes_file() const {
  return leaf<std::string>(enclosing(document_, key::mesh), key::nodes);
}

std::string DataFileReader::get_cells_file() const {
  return leaf<std::string>(enclosing(document_, key::mesh), key::cells);
}

std::string DataFileReader::get_edges_file() const {
  return leaf<std::string>(enclosing(document_, key::mesh), key::edges);
}

std::array<double, 2> DataFileReader::get_mesh_origin() const {
  const json& mesh = enclosing(document_, key::mesh);
  if (!mesh.contains(key::origin)) return {0.0, 0.0};
  if (mesh.at(key::origin).size() != 2) {
    throw DataFileReaderException("Error. The following key has incorrect format in the datafile: ",
                                  key::origin);
  }
  return leaf<std::array<double, 2>>(mesh, key::origin);
}

// --- Model --------------------------------------------------------------------------------------

std::string DataFileReader::get_model_name() const {
  return leaf<std::string>(enclosing(document_, key::model), key::model_name);
}

std::string DataFileReader::get_flux_scheme_name() const {
  return leaf<std::string>(enclosing(document_, key::model), key::flux_scheme);
}

double DataFileReader::get_zero_depth_value() const {
  const json& model = enclosing(document_, key::model);
  return model.contains(key::zero_depth) ? leaf<double>(model, key::zero_depth) : 0.0001;
}

// --- Conditions ---------------------------------------------------------------------------------

std::string DataFileReader::get_initial_hydrodynamic_conditions_file() const {
  return leaf<std::string>(conditions(), key::initial_conditions);
}

bool DataFileReader::is_imposed_fixed_bed_level() const {
  return conditions().contains(key::fixed_bed_level);
}

std::string DataFileReader::get_fixed_bed_level_file() const {
  return leaf<std::string>(conditions(), key::fixed_bed_level);
}

bool DataFileReader::is_imposed_friction() const { return conditions().contains(key::friction); }

std::string DataFileReader::get_friction_file() const {
  return leaf<std::string>(conditions(), key::friction);
}

// --- Sediments ----------------------------------------------------------------------------------

bool DataFileReader::is_sediments() const { return get_model_name() == sediment_model_; }

bool DataFileReader::is_imposed_sediments_level() const {
  is_sediments();
  return validateKey<std::string>(conditions(), key::sediments_level);
}

std::string DataFileReader::get_sediments_level_file() const {
  is_imposed_sediments_level();
  return conditions().at(key::sediments_level).get<std::string>();
}

bool DataFileReader::is_sediments_parameters() const {
  parameters();
  return true;
}

double DataFileReader::get_sediments_mean_grain() const {
  return leaf<double>(parameters(), key::mean_grain);
}

double DataFileReader::get_sediments_density() const {
  return leaf<double>(parameters(), key::density);
}

double DataFileReader::get_sediments_friction() const {
  return leaf<double>(parameters(), key::sediments_friction);
}

double DataFileReader::get_sediments_porosity() const {
  return leaf<double>(parameters(), key::porosity);
}

// --- Sources ------------------------------------------------------------------------------------

bool DataFileReader::is_rainfall() const { return sources().contains(key::rainfall); }

std::string DataFileReader::get_rainfall_file() const {
  return leaf<std::string>(sources(), key::rainfall);
}

std::string DataFileReader::get_hyetocells_file() const {
  return leaf<std::string>(sources(), key::hyetocells);
}

bool DataFileReader::is_infiltration() const { return sources().contains(key::infiltration); }

std::string DataFileReader::get_infiltration_file() const {
  return leaf<std::string>(sources(), key::infiltration);
}

std::string DataFileReader::get_infiltracells_file() const {
  return leaf<std::string>(sources(), key::infiltracells);
}

bool DataFileReader::is_initial_infiltration() const {
  return sources().contains(key::initial_infiltration);
}

std::string DataFileReader::get_initial_infiltration_file() const {
  return leaf<std::string>(sources(), key::initial_infiltration);
}

// --- Extensions and outputs ---------------------------------------------------------------------

bool DataFileReader::is_extensions() const { return document_.contains(key::extensions); }

std::string DataFileReader::get_output_folder_path() const {
  return leaf<std::string>(enclosing(document_, key::output), key::folder);
}

double DataFileReader::get_dt_enveloppe() const {
  return leaf<double>(enclosing(document_, key::output), key::dt_enveloppe);
}

bool DataFileReader::is_pictures() const {
  return enclosing(document_, key::output).contains(key::pictures);
}

std::string DataFileReader::get_pictures_file() const {
  return leaf<std::string>(enclosing(document_, key::output), key::pictures);
}

bool DataFileReader::is_gauges() const {
  return enclosing(document_, key::output).contains(key::gauges);
}

std::string DataFileReader::get_gauges_file() const {
  return leaf<std::string>(enclosing(document_, key::output), key::gauges);
}

bool DataFileReader::is_discharge_check() const {
  return enclosing(document_, key::output).contains(key::discharges);
}

std::string DataFileReader::get_discharge_file() const {
  return leaf<std::string>(enclosing(document_, key::output), key::discharges);
}

// --- What became of the keys --------------------------------------------------------------------

void DataFileReader::add_uses_of(const json& object, const std::string& section,
                                 KeyUses& uses) const {
  for (const auto& [name, value] : object.items()) {
    const std::string path = path_of(section, name);
    if (read_.count(&value) == 0) {
      const KnownKey* const nearest = nearest_key(section, name);
      if (nearest != nullptr && nearest->path() == path) {
        uses.unused.push_back(path);
      } else {
        uses.ignored.push_back({path, nearest != nullptr ? nearest->path() : ""});
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
  for (const KnownKey& known : known_keys()) {
    if (known.use != KnownKey::Use::optional || known.other.empty()) continue;
    if (document_.contains(json::json_pointer("/" + known.path()))) continue;
    uses.defaulted.push_back({known.path(), known.other});
  }
  return uses;
}

}  // namespace utils
