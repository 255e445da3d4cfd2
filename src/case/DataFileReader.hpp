// Typed answers about the JSON data file of a run. Every getter checks the keys on its path when it
// is called, and throws a DataFileReaderException that names the key at fault.
#pragma once

#include <array>
#include <exception>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "case/keys.hpp"
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

/// What became of the keys of a data file, named by their paths, as in "mesh/nodes".
struct KeyUses {
  struct Ignored {
    std::string key;
    std::string nearest;  ///< known key that it resembles; empty if there is none
  };
  struct Defaulted {
    std::string key;
    std::string value;  ///< in place of the missing one
  };
  std::vector<std::string> read;
  std::vector<Defaulted> defaulted;
  std::vector<std::string> unused;  ///< known, and not asked for
  std::vector<Ignored> ignored;     ///< unknown
};

class DataFileReader : public Reader {
 public:
  /// Opens the file (a missing one ends the run) and parses it whole.
  explicit DataFileReader(const std::string& path);

  std::string get_simulation_name() const;
  double get_start_time() const;  ///< s
  double get_end_time() const;    ///< s
  double get_CFL() const;         ///< Courant number
  /// Code of the reference system of the mesh, where one is given.
  std::optional<int> get_epsg() const;
  /// Date and hour of the time 0 s, UTC, as in "2026-05-01 06:00:00".
  std::string get_epoch() const;

  std::string get_nodes_file() const;
  std::string get_cells_file() const;
  std::string get_edges_file() const;
  /// What was taken from the coordinates of the mesh, m; (0, 0) where nothing was.
  std::array<double, 2> get_mesh_origin() const;

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

  /// The name of the file under a key, if a run of this case asks for it.
  std::optional<std::string> file(const cases::Key& key) const;

  std::string get_output_folder_path() const;
  double get_dt_enveloppe() const;  ///< s
  std::optional<std::string> get_final_state_file() const;
  bool is_maxima() const;
  std::string get_maxima_file() const;
  double get_arrival_depth() const;  ///< m; 0.05 when absent
  bool is_pictures() const;
  std::string get_pictures_file() const;
  std::optional<std::string> get_results_file() const;
  bool is_double_results() const;
  bool is_gauges() const;
  std::string get_gauges_file() const;
  bool is_discharge_check() const;
  std::string get_discharge_file() const;

  /// What became of the keys up to now.
  KeyUses key_uses() const;

 private:
  using json = nlohmann::json;

  /// True if `object` holds `name` with a value of type T; throws otherwise.
  template <class T>
  bool validateKey(const json& object, const std::string& name) const;
  /// What stands at a path, all parts of which must exist.
  const json& section_at(std::string_view path) const;
  /// Whether a key stands in its section, which must exist.
  bool has(const cases::Key& key) const;
  template <class T>
  T value_of(const cases::Key& key) const;
  /// What `read` makes of the text under a key, if it stands there; a text of which it makes
  /// nothing is refused.
  template <class Read>
  auto understood(const cases::Key& key, const std::string& expected, const Read& read) const
      -> decltype(read(std::string()));
  /// The name of a file to write, which may not be empty.
  std::string result_name(const cases::Key& key) const;
  /// A number of the model with sediments.
  double parameter(const cases::Key& key) const;

  void add_uses_of(const json& object, const std::string& section, KeyUses& uses) const;

  json document_;
  mutable std::set<const json*> read_;  ///< values that were asked for
};

}  // namespace utils
