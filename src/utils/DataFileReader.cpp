#include "utils/DataFileReader.hpp"

namespace utils {

DataFileReaderException::DataFileReaderException(std::string message, std::string key)
    : text_(std::move(message) + std::move(key)) {}

DataFileReader::DataFileReader(const std::string& path)
    : Reader(path), document_(json::parse(stream_)) {}

template <class T>
bool DataFileReader::validateKey(const json& object, const std::string& key) const {
  if (!object.contains(key)) {
    throw DataFileReaderException("Error. The following key couldn't be found in the datafile: ",
                                  key);
  }
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
  return enclosing(enclosing(document_, model_key_), conditions_key_);
}

const nlohmann::json& DataFileReader::sources() const {
  return enclosing(enclosing(document_, model_key_), sources_key_);
}

const nlohmann::json& DataFileReader::parameters() const {
  is_sediments();
  return enclosing(enclosing(document_, model_key_), parameters_key_);
}

template <class T>
T DataFileReader::leaf(const json& object, const std::string& key) const {
  validateKey<T>(object, key);
  return object.at(key).get<T>();
}

// --- The run ------------------------------------------------------------------------------------

std::string DataFileReader::get_simulation_name() const {
  return leaf<std::string>(document_, simulation_name_key_);
}

double DataFileReader::get_start_time() const { return leaf<double>(document_, start_time_key_); }

double DataFileReader::get_end_time() const { return leaf<double>(document_, end_time_key_); }

double DataFileReader::get_CFL() const { return leaf<double>(document_, cfl_key_); }

// --- Mesh ---------------------------------------------------------------------------------------

std::string DataFileReader::get_nodes_file() const {
  return leaf<std::string>(enclosing(document_, mesh_key_), nodes_key_);
}

std::string DataFileReader::get_cells_file() const {
  return leaf<std::string>(enclosing(document_, mesh_key_), cells_key_);
}

std::string DataFileReader::get_edges_file() const {
  return leaf<std::string>(enclosing(document_, mesh_key_), edges_key_);
}

// --- Model --------------------------------------------------------------------------------------

std::string DataFileReader::get_model_name() const {
  return leaf<std::string>(enclosing(document_, model_key_), model_name_key_);
}

std::string DataFileReader::get_flux_scheme_name() const {
  return leaf<std::string>(enclosing(document_, model_key_), flux_scheme_key_);
}

double DataFileReader::get_zero_depth_value() const {
  const json& model = enclosing(document_, model_key_);
  return model.contains(zero_depth_key_) ? leaf<double>(model, zero_depth_key_) : 0.0001;
}

// --- Conditions ---------------------------------------------------------------------------------

std::string DataFileReader::get_initial_hydrodynamic_conditions_file() const {
  return leaf<std::string>(conditions(), initial_conditions_key_);
}

bool DataFileReader::is_imposed_fixed_bed_level() const {
  return conditions().contains(fixed_bed_level_key_);
}

std::string DataFileReader::get_fixed_bed_level_file() const {
  return leaf<std::string>(conditions(), fixed_bed_level_key_);
}

bool DataFileReader::is_imposed_friction() const { return conditions().contains(friction_key_); }

std::string DataFileReader::get_friction_file() const {
  return leaf<std::string>(conditions(), friction_key_);
}

// --- Sediments ----------------------------------------------------------------------------------

bool DataFileReader::is_sediments() const { return get_model_name() == sediment_model_; }

bool DataFileReader::is_imposed_sediments_level() const {
  is_sediments();
  return validateKey<std::string>(conditions(), sediments_level_key_);
}

std::string DataFileReader::get_sediments_level_file() const {
  is_imposed_sediments_level();
  return conditions().at(sediments_level_key_).get<std::string>();
}

bool DataFileReader::is_sediments_parameters() const {
  parameters();
  return true;
}

double DataFileReader::get_sediments_mean_grain() const {
  return leaf<double>(parameters(), mean_grain_key_);
}

double DataFileReader::get_sediments_density() const {
  return leaf<double>(parameters(), density_key_);
}

double DataFileReader::get_sediments_friction() const {
  return leaf<double>(parameters(), sediments_friction_key_);
}

double DataFileReader::get_sediments_porosity() const {
  return leaf<double>(parameters(), porosity_key_);
}

// --- Sources ------------------------------------------------------------------------------------

bool DataFileReader::is_rainfall() const { return sources().contains(rainfall_key_); }

std::string DataFileReader::get_rainfall_file() const {
  return leaf<std::string>(sources(), rainfall_key_);
}

std::string DataFileReader::get_hyetocells_file() const {
  return leaf<std::string>(sources(), hyetocells_key_);
}

bool DataFileReader::is_infiltration() const { return sources().contains(infiltration_key_); }

std::string DataFileReader::get_infiltration_file() const {
  return leaf<std::string>(sources(), infiltration_key_);
}

std::string DataFileReader::get_infiltracells_file() const {
  return leaf<std::string>(sources(), infiltracells_key_);
}

bool DataFileReader::is_initial_infiltration() const {
  return sources().contains(initial_infiltration_key_);
}

std::string DataFileReader::get_initial_infiltration_file() const {
  return leaf<std::string>(sources(), initial_infiltration_key_);
}

// --- Extensions and outputs ---------------------------------------------------------------------

bool DataFileReader::is_extensions() const { return document_.contains(extensions_key_); }

std::string DataFileReader::get_output_folder_path() const {
  return leaf<std::string>(enclosing(document_, output_key_), folder_key_);
}

double DataFileReader::get_dt_enveloppe() const {
  return leaf<double>(enclosing(document_, output_key_), dt_enveloppe_key_);
}

bool DataFileReader::is_pictures() const {
  return enclosing(document_, output_key_).contains(pictures_key_);
}

std::string DataFileReader::get_pictures_file() const {
  return leaf<std::string>(enclosing(document_, output_key_), pictures_key_);
}

bool DataFileReader::is_gauges() const {
  return enclosing(document_, output_key_).contains(gauges_key_);
}

std::string DataFileReader::get_gauges_file() const {
  return leaf<std::string>(enclosing(document_, output_key_), gauges_key_);
}

bool DataFileReader::is_discharge_check() const {
  return enclosing(document_, output_key_).contains(discharges_key_);
}

std::string DataFileReader::get_discharge_file() const {
  return leaf<std::string>(enclosing(document_, output_key_), discharges_key_);
}

}  // namespace utils
