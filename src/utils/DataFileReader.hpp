// Typed answers about the JSON data file of a run. Every getter checks the keys on its path when it
// is called, and throws a DataFileReaderException that names the key at fault.
#pragma once

#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "utils/Reader.hpp"

namespace utils {

class DataFileReaderException : public std::exception {
 public:
  DataFileReaderException(std::string message, std::string key);
  /// The message, directly followed by the key.
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

class DataFileReader : public Reader {
 public:
  /// Opens the file (a missing one ends the run) and parses it whole.
  explicit DataFileReader(const std::string& path);

  std::string get_simulation_name() const;
  double get_start_time() const;  ///< s
  double get_end_time() const;    ///< s
  double get_CFL() const;         ///< Courant number

  std::string get_nodes_file() const;
  std::string get_cells_file() const;
  std::string get_edges_file() const;

  std::string get_model_name() const;
  std::string get_flux_scheme_name() const;
  double get_zero_depth_value() const;  ///< m; 0.0001 when absent

  std::string get_initial_hydrodynamic_conditions_file() const;
  bool is_imposed_fixed_bed_level() const;
  std::string get_fixed_bed_level_file() const;
  bool is_imposed_friction() const;
  std::string get_friction_file() const;

  /// Whether the model is the one with sediments.
  bool is_sediments() const;
  /// True, or throws: a requirement of the model with sediments, not a test.
  bool is_imposed_sediments_level() const;
  std::string get_sediments_level_file() const;
  /// True, or throws, as above.
  bool is_sediments_parameters() const;
  double get_sediments_mean_grain() const;  ///< m
  double get_sediments_density() const;     ///< relative to water
  double get_sediments_friction() const;    ///< s/m^(1/3)
  double get_sediments_porosity() const;

  bool is_rainfall() const;
  std::string get_rainfall_file() const;
  std::string get_hyetocells_file() const;
  bool is_infiltration() const;
  std::string get_infiltration_file() const;
  std::string get_infiltracells_file() const;
  bool is_initial_infiltration() const;
  std::string get_initial_infiltration_file() const;

  bool is_extensions() const;

  std::string get_output_folder_path() const;
  double get_dt_enveloppe() const;  ///< s
  bool is_pictures() const;
  std::string get_pictures_file() const;
  bool is_gauges() const;
  std::string get_gauges_file() const;
  bool is_discharge_check() const;
  std::string get_discharge_file() const;

 private:
  using json = nlohmann::json;

  /// True if `object` holds `key` with a value of type T; throws otherwise.
  template <class T>
  bool validateKey(const json& object, const std::string& key) const;
  /// The enclosing object under a key, which must exist.
  const json& enclosing(const json& object, const std::string& key) const;
  const json& conditions() const;
  const json& sources() const;
  const json& parameters() const;
  template <class T>
  T leaf(const json& object, const std::string& key) const;

  json document_;
  const std::string sediment_model_ = "Bramsett";

  const std::string simulation_name_key_ = "name";
  const std::string start_time_key_ = "t0";
  const std::string end_time_key_ = "tend";
  const std::string cfl_key_ = "CFL";
  const std::string mesh_key_ = "mesh";
  const std::string nodes_key_ = "nodes";
  const std::string cells_key_ = "cells";
  const std::string edges_key_ = "edges";
  const std::string model_key_ = "model";
  const std::string model_name_key_ = "name";
  const std::string flux_scheme_key_ = "flux scheme";
  const std::string zero_depth_key_ = "zero depth value";
  const std::string conditions_key_ = "conditions";
  const std::string sources_key_ = "sources";
  const std::string initial_conditions_key_ = "initial conditions";
  const std::string fixed_bed_level_key_ = "fixed bed level";
  const std::string friction_key_ = "friction";
  const std::string sediments_level_key_ = "initial sediments level";
  const std::string parameters_key_ = "parameters";
  const std::string mean_grain_key_ = "sediments mean grain diameter";
  const std::string density_key_ = "sediments density";
  const std::string sediments_friction_key_ = "sediments friction coefficient";
  const std::string porosity_key_ = "sediments porosity";
  const std::string extensions_key_ = "extensions";
  const std::string output_key_ = "output";
  const std::string folder_key_ = "folder";
  const std::string dt_enveloppe_key_ = "time step enveloppe of results";
  const std::string pictures_key_ = "snapshots of flow";
  const std::string gauges_key_ = "gauges";
  const std::string discharges_key_ = "discharges";
  const std::string hyetocells_key_ = "hyetocells";
  const std::string rainfall_key_ = "rainfall";
  const std::string infiltration_key_ = "infiltration";
  const std::string infiltracells_key_ = "infiltracells";
  const std::string initial_infiltration_key_ = "initial infiltration";
};

}  // namespace utils
