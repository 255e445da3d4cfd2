#include "case/read_data_file.hpp"

#include "globals/edge_codes.hpp"
#include "utils/stop.hpp"

namespace cases {

namespace {

/// Codes that interior edges take from the name of the flux scheme; any other name has code 0.
int edge_code_of_scheme(const std::string& name) {
  if (find_scheme(name) != nullptr) return edge_code::scheme_lhllc;
  return name == "Roe" ? edge_code::scheme_roe : 0;
}

void take_scheme(const std::string& name, DataFile& data, Case& contents) {
  data.flux_scheme = edge_code_of_scheme(name);
  const SchemeKind* const kind = find_scheme(name);
  if (kind == nullptr) return;  // the edges say so
  contents.scheme = kind->scheme;
  if (!contents.has_sediments || kind->with_sediments) return;
  utils::fatal("Error. The model with sediments does not have the flux scheme \"" + name +
               "\"; use \"LHLLC\".\n");
}

void read_conditions(const utils::DataFileReader& reader, DataFile& data) {
  data.initial_conditions = reader.get_initial_hydrodynamic_conditions_file();
  if (reader.is_imposed_fixed_bed_level()) data.fixed_bed_level = reader.get_fixed_bed_level_file();
  if (reader.is_imposed_friction()) data.friction = reader.get_friction_file();
}

void read_sources(const utils::DataFileReader& reader, DataFile& data) {
  if (reader.is_rainfall()) {
    data.rainfall = reader.get_rainfall_file();
    data.hyetocells = reader.get_hyetocells_file();
  }
  if (reader.is_infiltration()) {
    data.infiltration = reader.get_infiltration_file();
    data.infiltracells = reader.get_infiltracells_file();
  }
  if (reader.is_initial_infiltration()) {
    data.initial_infiltration = reader.get_initial_infiltration_file();
  }
}

void read_sediment(const utils::DataFileReader& reader, DataFile& data,
                   SedimentParameters& sediment) {
  if (!reader.is_sediments()) return;
  if (reader.is_imposed_sediments_level()) {
    data.sediments_level = reader.get_sediments_level_file();
  }
  if (!reader.is_sediments_parameters()) return;
  sediment.d50 = reader.get_sediments_mean_grain();
  sediment.density = reader.get_sediments_density();
  sediment.manning = reader.get_sediments_friction();
  sediment.porosity = reader.get_sediments_porosity();
}

void read_outputs(const utils::DataFileReader& reader, DataFile& data) {
  data.output_folder = reader.get_output_folder_path();
  data.dt_enveloppe = reader.get_dt_enveloppe();
  if (reader.is_pictures()) data.pictures = reader.get_pictures_file();
  if (reader.is_gauges()) data.gauges = reader.get_gauges_file();
  if (reader.is_discharge_check()) data.discharges = reader.get_discharge_file();
}

}  // namespace

void read_data_file(const utils::DataFileReader& reader, DataFile& data, Case& contents) {
  data.simulation_name = reader.get_simulation_name();
  contents.t_start = reader.get_start_time();
  contents.t_end = reader.get_end_time();
  contents.cfl = reader.get_CFL();
  data.nodes = reader.get_nodes_file();
  data.cells = reader.get_cells_file();
  data.edges = reader.get_edges_file();
  data.model_name = reader.get_model_name();
  contents.has_sediments = reader.is_sediments();
  contents.zero_depth = reader.get_zero_depth_value();
  take_scheme(reader.get_flux_scheme_name(), data, contents);
  read_conditions(reader, data);
  read_sources(reader, data);
  contents.has_infiltration = data.infiltration || data.initial_infiltration;
  read_sediment(reader, data, contents.sediment);
  read_outputs(reader, data);
}

}  // namespace cases
