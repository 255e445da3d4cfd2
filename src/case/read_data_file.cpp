#include "case/read_data_file.hpp"

#include <string_view>

#include "case/boundary_kinds.hpp"
#include "case/cell_files.hpp"
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
               "\"; use \"" + positive_scheme(true).name + "\" or \"LHLLC\".\n");
}

/// Those of a section that the model with sediments asks for alone, or all others.
void read_cell_files(const utils::DataFileReader& reader, std::string_view section,
                     bool of_sediments, DataFile& data) {
  for (const Key& key : keys) {
    const bool is_meant =
        key.section() == section && (key.use == Key::Use::sediments) == of_sediments;
    if (!is_meant || cell_file(key) == nullptr) continue;
    if (std::optional<std::string> name = reader.file(key)) {
      data.cell_files.set(key, std::move(*name));
    }
  }
}

void read_sources(const utils::DataFileReader& reader, DataFile& data) {
  data.rainfall = reader.file(key("model/sources/rainfall"));
  data.hyetocells = reader.file(key("model/sources/hyetocells"));
  data.infiltration = reader.file(key("model/sources/infiltration"));
  data.infiltracells = reader.file(key("model/sources/infiltracells"));
  read_cell_files(reader, "model/sources", false, data);
}

void read_sediment(const utils::DataFileReader& reader, DataFile& data,
                   SedimentParameters& sediment) {
  if (!reader.is_sediments()) return;
  read_cell_files(reader, "model/conditions", true, data);
  if (!reader.is_sediments_parameters()) return;
  sediment.d50 = reader.get_sediments_mean_grain();
  sediment.density = reader.get_sediments_density();
  sediment.manning = reader.get_sediments_friction();
  sediment.porosity = reader.get_sediments_porosity();
}

void read_results(const utils::DataFileReader& reader, DataFile& data) {
  const std::optional<std::string> name = reader.get_results_file();
  if (!name) return;
  data.results = {*name, reader.file(key("output/results times")), reader.is_double_results()};
  data.origin = reader.get_mesh_origin();
  if (data.results->times || data.pictures) return;
  utils::fatal("Error. " + results_without_times() + ".\n");
}

void read_outputs(const utils::DataFileReader& reader, DataFile& data) {
  data.output_folder = reader.get_output_folder_path();
  data.dt_enveloppe = reader.get_dt_enveloppe();
  if (reader.is_maxima()) {
    data.maxima = MaximaRequest{reader.get_maxima_file(), reader.get_arrival_depth()};
  }
  data.final_state = reader.get_final_state_file();
  data.pictures = reader.file(key("output/snapshots of flow"));
  data.gauges = reader.file(key("output/gauges"));
  data.discharges = reader.file(key("output/discharges"));
  read_results(reader, data);
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
  read_cell_files(reader, "model/conditions", false, data);
  read_sources(reader, data);
  contents.has_infiltration =
      data.infiltration || data.cell_files.find(key("model/sources/initial infiltration"));
  read_sediment(reader, data, contents.sediment);
  read_outputs(reader, data);
  data.epsg = reader.get_epsg();
  data.epoch = reader.get_epoch();
}

}  // namespace cases
